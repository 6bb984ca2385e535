#include "views/mainframe.h"

#include <algorithm>
#include <string>

#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/window/dc.h"
#include "platform/window/msgbox.h"
#include "platform/window/statusbarctrl.h"
#include "reporting/log.h"
#include "resources/resources.h"
#include "views/current.h"
#include "views/entriespane.h"
#include "views/entryframe.h"
#include "views/problempane.h"
#include "views/table.h"
#include "views/typespane.h"

namespace {

// Where the parts of the window meet, in client pixels.
constexpr int topEdge = 24;     // top of the problem list
constexpr int middleEdge = 200; // the lower panes are measured from here
constexpr int columnEdge = 250; // left side of the keys
constexpr int headingsHeight = 22;

struct Heading {
    const char* text;
    int x;
    int y;
};

constexpr Heading headings[] = {
    {"Problem list", 8, 4},
    {"Data types", 8, middleEdge + 3},
    {"Files", 155, middleEdge + 3},
    {"Entries", 195, middleEdge + 3},
};

// An edge under a row of headings.
void drawEdge(CDC& dc, int y, int right) {
    dc.SelectStockObject(WHITE_PEN);
    drawLine(dc, {1, y}, {right, y});
    dc.SelectObject(getPen(darkEdgePen));
    drawLine(dc, {1, y + 1}, {right, y + 1});
}

// The two grooves, five pixels wide: one under the problem list, and one between the lower panes that starts
// in it.
void drawGrooves(CDC& dc, int right, int bottom) {
    const CPen pens[] = {CPen(RGB(255, 255, 255)), CPen(getColour(baseColour)), CPen(getColour(darkColour)),
                         CPen(getColour(darkerColour)), CPen(RGB(0, 0, 0))};
    constexpr int starts[] = {1, 2, 3, 2, 1}; // of the lines of the vertical groove, above the middle edge
    for (int i = 0; i < 5; ++i) {
        dc.SelectObject(&pens[i]);
        drawLine(dc, {1, middleEdge - 5 + i}, {right, middleEdge - 5 + i});
    }
    for (int i = 0; i < 5; ++i) {
        dc.SelectObject(&pens[i]);
        drawLine(dc, {columnEdge - 5 + i, middleEdge - starts[i]}, {columnEdge - 5 + i, bottom});
    }
    dc.SelectStockObject(BLACK_PEN);
}

int changedFiles(const TSXdatabase& model) {
    int count = 0;
    for (const auto& list : model.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            count += list->files[i]->anydirty();
    return count;
}

} // namespace

TSXmainframe::TSXmainframe() {
    place = &places.main;
}

TSXmainframe::~TSXmainframe() {
    if (keepPlaces != nullptr)
        keepPlaces(places);
    if (mainFrame == this)
        mainFrame = nullptr;
}

void TSXmainframe::createMainWindow() {
    const std::string title = std::string("Database Check- ") + currentDatabase.c_str();
    Create(AfxRegisterWndClass(getBrush(baseBrush), LoadIconA(applicationIcon)), title.c_str(),
           RECT{20, 20, 770, 570}, nullptr, mainMenu);
}

void TSXmainframe::frameCreated() {
    typesPane = makePane<TSXtypespane>(*this);
    entriesPane = makePane<TSXentriespane>(*this);
    problemPane = makePane<TSXproblempane>(*this);
    for (TSXrowpane* pane :
         std::initializer_list<TSXrowpane*>{problemPane.get(), typesPane.get(), entriesPane.get()})
        pane->SetTabStop();
    updateScrollRanges();
    showStatus();
}

void TSXmainframe::updateScrollRanges() {
    typesPane->updateScrollRange();
    entriesPane->updateScrollRange();
    problemPane->updateScrollRange();
}

void TSXmainframe::frameSized(int /*type*/, int /*width*/, int /*height*/) {
    int right = 0;
    int bottom = 0;
    getInnerSize(right, bottom);
    constexpr int lower = middleEdge + headingsHeight;
    problemPane->placeAt(1, topEdge, right - 1, middleEdge - topEdge - 5);
    typesPane->placeAt(1, lower, columnEdge - 6, bottom - lower);
    entriesPane->placeAt(columnEdge, lower, right - columnEdge, bottom - lower);
    updateScrollRanges();
    InvalidateRect(true);
}

void TSXmainframe::paintFrame(CDC& dc) {
    int right = 0;
    int bottom = 0;
    getInnerSize(right, bottom);
    drawEdge(dc, topEdge - 2, right);
    drawEdge(dc, middleEdge + headingsHeight - 2, right);
    drawGrooves(dc, right, bottom);
    dc.SelectObject(getFont(plainFont));
    dc.SetBkMode(TRANSPARENT);
    for (const Heading& heading : headings)
        dc.TextOutA(heading.x, heading.y, heading.text);
}

void TSXmainframe::frameCommand(std::uint32_t id) {
    switch (id) {
    case exitCommand:
        if (canClose() == 1)
            DestroyWindow(); // deletes this object
        break;
    case showAllCommand:
        showAllEntries();
        break;
    case rebuildCommand:
        rebuildDatabase();
        break;
    case saveCommand:
        save();
        break;
    case editCommand:
        openEntryWindow();
        break;
    default:
        if (id >= removeemptyfilescommand && id <= lastsolutioncommand)
            solveProblem(id);
    }
}

int TSXmainframe::canClose() {
    if (database->ismodified() != 1)
        return 1;
    const int answer =
        MessageBoxA(this, "Database has been changed. Do you want to save these changes on disk?", "Warning",
                    MB_YESNOCANCEL | MB_ICONEXCLAMATION);
    if (answer == IDYES)
        return save() ? 1 : 0; // what could not be saved must not go with the window
    return answer == IDCANCEL ? 0 : 1;
}

bool TSXmainframe::save() {
    database->saveall();
    unsavedFiles = changedFiles(*database);
    showStatus();
    return unsavedFiles == 0;
}

// What the person should know although no message box says it, or says it any more.
void TSXmainframe::showStatus() {
    const int unread = database->unreadcount();
    std::string line;
    const auto add = [&line](const char* what, int count) {
        if (count > 0)
            line += (line.empty() ? "" : "; ") + (what + std::to_string(count));
    };
    add("Could not be read: ", unread);
    add("Left out: ", static_cast<int>(database->unread.size()) - unread);
    if (!line.empty())
        line += " (see TXLOG.TXT)";
    add("Files not saved: ", unsavedFiles);
    add("Lines missing in TXLOG.TXT, which could not be written: ", lostLogLines());
    statusBar->SetText(line.c_str());
}

void TSXmainframe::showAllEntries() {
    database->showallkeys();
    entriesPane->InvalidateRect(true);
    entriesPane->updateScrollRange();
}

void TSXmainframe::solveProblem(std::uint32_t command) {
    SetCursor(IDC_WAIT);
    const TSXproblem* problem = database->getproblem(selectedProblem);
    const std::size_t changes = database->changes.size();
    int result = 0;
    for (int i = 1; problem != nullptr && i <= problem->solutioncount(); ++i)
        if (problem->solutioncommand(i) == static_cast<int>(command))
            result = problem->solve(i);
    if (result == 1 || database->changes.size() > changes) // some of the files may have gone all the same
        rebuildDatabase();
    if (result != 1)
        MessageBeep();
    SetCursor(IDC_ARROW);
}

void TSXmainframe::rebuildDatabase() {
    closeEntryWindows(); // each shows a key of the index, which the analysis makes anew
    database->analyse();
    unsavedFiles = std::min(unsavedFiles, changedFiles(*database)); // a solution may have deleted one
    updateScrollRanges();
    showStatus();
    InvalidateRect(true);
    entriesPane->InvalidateRect(true);
    typesPane->InvalidateRect(true);
    problemPane->InvalidateRect(true);
}

void TSXmainframe::closeEntryWindows() {
    for (TSXentryframe* window : entryWindows)
        if (window != nullptr)
            window->DestroyWindow();
}

void TSXmainframe::openEntryWindow() {
    TSXkeyentry* const key = database->getvisiblekey(selectedKey);
    if (key == nullptr) {
        MessageBeep();
        return;
    }
    TSXentryframe** free = nullptr;
    for (TSXentryframe*& window : entryWindows) {
        if (window == nullptr)
            free = &window;
        else if (window->showsKey(*key))
            return window->SetActiveWindow();
    }
    if (free == nullptr)
        return;
    *free = new TSXentryframe(*this, *database, *key); // deletes itself with its window
    (*free)->createEntryWindow();
}

void TSXmainframe::entryWindowClosed(const TSXentryframe& window) {
    for (TSXentryframe*& open : entryWindows)
        if (open == &window)
            open = nullptr;
}

void TSXmainframe::changeKey(TSXkeyentry& entry, int type, int n, const char* text) {
    if (database->changekey(entry, type, n, text) != 1)
        return;
    for (TSXentryframe* window : entryWindows)
        if (window != nullptr)
            window->refreshEntry();
    entriesPane->updateScrollRange();
    entriesPane->InvalidateRect(false);
}
