#include "views/entriespane.h"

#include "model/database.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "views/current.h"
#include "views/mainframe.h"

namespace {

constexpr int keyWidth = 250;
constexpr int countWidth = 25;

} // namespace

TSXentriespane::TSXentriespane(TSXmainframe& frame)
    : TSXrowpane("Entries", frame.selectedKey), owner(frame) {}

void TSXentriespane::updateScrollRange() { // one spare row, and one spare column
    setRanges(keyWidth + countWidth * (database->lasttype + 2), rowHeight * (database->visiblecount + 1));
}

void TSXentriespane::paintCount(CDC& dc, const RECT& cell, int count, bool marked) {
    dc.SelectObject(getFont(marked ? boldFont : plainFont));
    if (marked)
        dc.SetTextColor(RGB(255, 0, 0));
    paintCell(dc, cell.right - 3, cell, count > 0 || marked ? Text<20>().format("%d", count).c_str() : ".");
}

void TSXentriespane::paintRow(CDC& dc, int row, const RECT& place) {
    const TSXkeyentry& key = *database->getvisiblekey(row);
    const bool selected = row == owner.selectedKey;
    // A key without a record is one that all its records have left.
    const bool bare = key.records().empty();
    const COLORREF textColour = bare ? RGB(128, 128, 128) : RGB(0, 0, 0);
    RECT cell = {-hStep * hPos, place.top, -hStep * hPos + keyWidth, place.bottom};
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
    fillRow(dc, cell.right, place, rowColour(selected));
}

void TSXentriespane::mouseDown(int kind, int /*x*/, int y) {
    const int row = rowAt(y);
    if (isRow(row)) {
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

void TSXentriespane::openRow() {
    owner.openEntryWindow();
}

std::string TSXentriespane::cutText(int row, int x) const {
    const bool onKey = x < keyWidth - hStep * hPos;
    return onKey ? wider(std::string(database->getvisiblekey(row)->key), keyWidth - 2) : std::string();
}
