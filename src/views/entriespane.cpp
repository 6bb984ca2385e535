#include "views/entriespane.h"

#include <algorithm>

#include "model/database.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "platform/window/dc.h"
#include "views/current.h"
#include "views/mainframe.h"
#include "views/table.h"

namespace {

constexpr int keyWidth = 250;
constexpr int countWidth = 25;
constexpr int margin = 3; // rows painted beyond the paint rectangle

void paintCount(CDC& dc, const RECT& cell, int count, bool marked) {
    dc.SelectObject(getFont(marked ? boldFont : plainFont));
    if (marked)
        dc.SetTextColor(RGB(255, 0, 0));
    paintCell(dc, cell.right - 3, cell, count > 0 || marked ? Text<20>().format("%d", count).c_str() : ".");
}

} // namespace

void TSXentriespane::updateScrollRange() {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    // One spare row, and one spare column.
    vRange = scrollSteps(rowHeight * (database->visiblecount + 1), height, vStep);
    hRange = scrollSteps(keyWidth + countWidth * (database->lasttype + 2), width, hStep);
    updateRows();
}

void TSXentriespane::paintPane(CDC& dc) {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    beginTable(dc);
    const RECT paint = dc.GetClipBox();
    const int offset = vStep * vPos;
    const int first = std::max((paint.top + offset) / rowHeight - margin, 1);
    const int last = std::min((paint.bottom + offset) / rowHeight + margin, database->visiblecount);
    for (int r = first; r <= last; ++r)
        paintRow(dc, *database->getvisiblekey(r), r == owner.selectedKey, rowHeight * (r - 1) - offset,
                 width);
    if (first <= last)
        fillBelow(dc, rowHeight * last - offset, width, height);
}

void TSXentriespane::paintRow(CDC& dc, const TSXkeyentry& key, bool selected, int top, int width) {
    // Without a record a key stands in the index as a changed key leaves it behind.
    const bool bare = key.records().empty();
    const COLORREF textColour = bare ? RGB(128, 128, 128) : RGB(0, 0, 0);
    RECT cell = {-hStep * hPos, top, -hStep * hPos + keyWidth, top + rowHeight};
    dc.SelectObject(getFont(plainFont));
    dc.SetBkColor(rowColour(selected));
    dc.SetTextColor(textColour);
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    paintCell(dc, cell.left + 2, cell, key.key.data());
    dc.SetTextAlign(TA_RIGHT | TA_TOP);
    for (int t = 0; t <= database->lasttype; ++t) {
        const int count = key.occurrences(t);
        cell.left = cell.right;
        cell.right += countWidth;
        dc.SetTextColor(textColour);
        paintCount(dc, cell, count, count > 1 || (t == 0 && count == 0 && !bare));
    }
    fillRow(dc, cell.right, top, width, rowColour(selected));
}

void TSXentriespane::mouseDown(int kind, int /*x*/, int y) {
    const int row = (y + vStep * vPos) / rowHeight + 1;
    if (row >= 1 && row <= database->visiblecount) {
        if (row != owner.selectedKey) {
            owner.selectedKey = row;
            InvalidateRect(false);
        }
        if (kind == leftDouble)
            owner.openEntryWindow();
    }
    UpdateWindow();
}

int TSXentriespane::rowCount() const {
    return database->visiblecount;
}

std::string TSXentriespane::rowText(int row) const {
    const TSXkeyentry& key = *database->getvisiblekey(row);
    std::string text(key.key);
    for (int t = 0; t <= database->lasttype; ++t)
        if (t == 0 || key.occurrences(t) > 0)
            text += std::string(", ") + database->gettype(t)->name.c_str() + " " +
                    std::to_string(key.occurrences(t));
    return text;
}

int TSXentriespane::selectedRow() const {
    return owner.selectedKey;
}

void TSXentriespane::selectRow(int row) {
    owner.selectedKey = row;
}

void TSXentriespane::openRow() {
    owner.openEntryWindow();
}

std::string TSXentriespane::cutText(int row, int x) const {
    const bool onKey = x < keyWidth - hStep * hPos;
    return onKey ? wider(std::string(database->getvisiblekey(row)->key), keyWidth - 2) : std::string();
}
