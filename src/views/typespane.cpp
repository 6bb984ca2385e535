#include "views/typespane.h"

#include "model/database.h"
#include "model/exptype.h"
#include "toolkit/icons.h"
#include "views/current.h"
#include "views/mainframe.h"

namespace {

constexpr int nameX = 30;
constexpr int nameRight = 120;
constexpr int filesRight = 170; // the frame's headings stand over these columns
constexpr int entriesRight = 220;
constexpr int databaseIcon = 13;
constexpr int classIcons = 200; // that of class 1 is 201

void paintTypeIcon(CDC& dc, int type, int classid, int top) {
    if (type == 0) {
        paintIcon(dc, 4, top + 2, databaseIcon);
        return;
    }
    constexpr COLORREF shadow = RGB(128, 128, 128);
    paintIcon(dc, 4, top + 2, classIcons + classid);
    dc.FillSolidRect(6, top + 17, 15, 2, shadow);
    dc.FillSolidRect(19, top + 4, 2, 14, shadow);
}

} // namespace

void TSXtypespane::updateScrollRange() {
    setRanges(0, rowHeight * rowCount());
}

void TSXtypespane::paintRow(CDC& dc, int row, const RECT& place) {
    const int type = row - 1;
    const auto paintCount = [&](int left, int right, int count) {
        paintCell(dc, right - 5, {left, place.top, right, place.bottom}, Text<20>().format("%d", count));
    };
    const TSXexptype& shown = *database->gettype(type);
    const COLORREF colour = rowColour(type == owner.selectedType);
    dc.SetBkColor(colour);
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    paintCell(dc, nameX, {0, place.top, nameRight, place.bottom}, shown.name);
    paintTypeIcon(dc, type, shown.classid, place.top);
    dc.SetBkColor(colour);
    dc.SetTextAlign(TA_RIGHT | TA_TOP);
    paintCount(nameRight, filesRight, shown.filecount);
    paintCount(filesRight, entriesRight, shown.entrycount);
    fillRow(dc, entriesRight, place, colour);
}

int TSXtypespane::rowCount() const {
    return database->lasttype + 1;
}

std::string TSXtypespane::rowText(int row) const {
    const TSXexptype& type = *database->gettype(row - 1);
    return std::string(type.name.c_str()) + ", files " + std::to_string(type.filecount) + ", entries " +
           std::to_string(type.entrycount);
}

std::string TSXtypespane::cutText(int row, int x) const {
    return x < nameRight ? wider(database->gettype(row - 1)->name.c_str(), nameRight - nameX) : std::string();
}
