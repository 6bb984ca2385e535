#include "views/typespane.h"

#include "model/database.h"
#include "model/exptype.h"
#include "platform/window/dc.h"
#include "views/current.h"
#include "views/mainframe.h"
#include "views/table.h"

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

void paintCount(CDC& dc, int left, int right, int top, int count) {
    paintCell(dc, right - 5, {left, top, right, top + rowHeight}, Text<20>().format("%d", count));
}

} // namespace

void TSXtypespane::updateScrollRange() {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    hRange = 0;
    vRange = scrollSteps(rowHeight * (database->lasttype + 1), height, vStep);
    updateRows();
}

void TSXtypespane::paintPane(CDC& dc) {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    beginTable(dc);
    int top = -vStep * vPos;
    for (int i = 0; i <= database->lasttype; ++i) {
        paintRow(dc, i, top, width);
        top += rowHeight;
    }
    fillBelow(dc, top, width, height);
}

void TSXtypespane::paintRow(CDC& dc, int type, int top, int width) {
    const TSXexptype& shown = *database->gettype(type);
    const COLORREF colour = rowColour(type == owner.selectedType);
    dc.SetBkColor(colour);
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    paintCell(dc, nameX, {0, top, nameRight, top + rowHeight}, shown.name);
    paintTypeIcon(dc, type, shown.classid, top);
    dc.SetBkColor(colour);
    dc.SetTextAlign(TA_RIGHT | TA_TOP);
    paintCount(dc, nameRight, filesRight, top, shown.filecount);
    paintCount(dc, filesRight, entriesRight, top, shown.entrycount);
    fillRow(dc, entriesRight, top, width, colour);
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
