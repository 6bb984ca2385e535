#include "views/entryframe.h"

#include <algorithm>
#include <cstring>

#include "model/database.h"
#include "model/datafile.h"
#include "model/keyentry.h"
#include "platform/window/dc.h"
#include "platform/window/encoding.h"
#include "platform/window/msgbox.h"
#include "resources/resources.h"
#include "toolkit/promptdialog.h"
#include "views/current.h"
#include "views/entrygridpane.h"
#include "views/mainframe.h"

namespace {

constexpr int namesWidth = 147;
constexpr int gridX = 150;

// What is typed is written as the database already holds that text: a key in the other encoding would look
// the same and be another.
std::string asStored(const TSXdatabase& database, const char* typed) {
    std::string other = inOtherEncoding(typed);
    const TSXkeytree& index = database.keytree;
    return index.find(typed) == nullptr && index.find(other) != nullptr ? other : typed;
}

} // namespace

TSXentryframe::TSXentryframe(TSXmainframe& main, TSXdatabase& owner, TSXkeyentry& entry)
    : database(owner), mainWindow(main), key(entry) {
    placement = &placements.entry;
}

TSXentryframe::~TSXentryframe() {
    mainWindow.entryWindowClosed(*this);
}

void TSXentryframe::createEntryWindow() {
    const std::string title = "Entry " + std::string(key.key);
    Create(AfxRegisterWndClass(getBrush(darkBrush), LoadIconA(applicationIcon), entryMenu), title.c_str(),
           RECT{120, 120, 650, 500}, &mainWindow);
    ShowWindow();
}

void TSXentryframe::frameCreated() {
    gridPane = makePane<TSXentrygridpane>(*this);
    typeNamesPane = makePane<TSXentrytypespane>(*this);
    gridPane->SetTabStop();
}

void TSXentryframe::frameSized(int /*type*/, int /*width*/, int /*height*/) {
    const auto [right, bottom] = getInnerSize();
    typeNamesPane->placeAt(1, 1, namesWidth, bottom - 1);
    gridPane->placeAt(gridX, 1, right - gridX, bottom - 1);
    gridPane->setGridRange();
    typeNamesPane->InvalidateRect(false);
    gridPane->InvalidateRect(false);
}

void TSXentryframe::paintFrame(CDC& dc) {
    const auto [right, bottom] = getInnerSize();
    dc.SelectStockObject(WHITE_PEN);
    drawLine(dc, {gridX - 2, 1}, {gridX - 2, bottom});
    dc.SelectObject(getPen(darkEdgePen));
    drawLine(dc, {gridX - 1, 1}, {gridX - 1, bottom});
}

void TSXentryframe::frameCommand(std::uint32_t id) {
    if (id == exitCommand && canClose() == 1)
        DestroyWindow(); // deletes this object
    else if (id == editCommand)
        changeKeyCommand();
}

void TSXentryframe::limitSelection() {
    selectedOccurrence = std::max(std::min(selectedOccurrence, key.occurrences(selectedType)), 1);
}

void TSXentryframe::refreshEntry() {
    limitSelection();
    gridPane->setGridRange();
    InvalidateRect(true);
    gridPane->InvalidateRect(true);
    gridPane->UpdateWindow();
    typeNamesPane->InvalidateRect(true);
    typeNamesPane->UpdateWindow();
}

void TSXentryframe::changeKeyCommand() {
    constexpr int limit = 99;
    if (selectedOccurrence < 1 || selectedOccurrence > key.occurrences(selectedType)) {
        MessageBeep();
        return;
    }
    char text[limit + 1] = {};
    static_assert(maxkeylength < sizeof text);
    std::strncpy(text, key.key.data(), limit);
    // Where the window has gone meanwhile the answer is 0, and nothing of it may be touched.
    if (promptForText(*this, "Change key", "Enter new key", text, limit) == 1)
        mainWindow.changeKey(key, selectedType, selectedOccurrence, asStored(database, text).c_str());
}
