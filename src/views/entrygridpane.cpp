#include "views/entrygridpane.h"

#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "views/entryframe.h"

namespace {

constexpr int cellWidth = 100;
constexpr int nameX = 5;
constexpr int nameRight = 120;

} // namespace

TSXentrygridpane::TSXentrygridpane(TSXentryframe& frame)
    : TSXrowpane("Records of the key", frame.selectedType), owner(frame) {}

void TSXentrygridpane::setGridRange() {
    int most = 0; // records in a row
    for (int t = 0; t <= owner.database.lasttype; ++t)
        most = std::max(most, owner.key.occurrences(t));
    hRange = std::max(100, cellWidth * most / hStep);
    vRange = std::max(100, rowHeight * rowCount() / vStep);
    updateScrollBars();
}

void TSXentrygridpane::paneCreated() {
    TSXrowpane::paneCreated();
    setGridRange();
}

void TSXentrygridpane::paintRow(CDC& dc, int row, const RECT& place) {
    const int type = row - 1;
    const COLORREF colour = rowColour(type == owner.selectedType);
    const int count = owner.key.occurrences(type);
    const int before = std::min(hStep * hPos / cellWidth, count); // cells to the left of the pane
    RECT cell = {0, place.top, cellWidth * before - hStep * hPos, place.bottom};
    dc.SetBkColor(colour);
    for (int n = before + 1; n <= count && cell.right < place.right; ++n) {
        cell.left = cell.right;
        cell.right += cellWidth;
        paintOccurrence(dc, type, n, cell);
    }
    fillRow(dc, cell.right, place, colour);
}

std::string TSXentrygridpane::cellText(int type, int n) const {
    const Occurrence shown = owner.key.occurrence(type, n);
    return shown.file->name.c_str() + ("," + std::to_string(shown.record));
}

void TSXentrygridpane::paintOccurrence(CDC& dc, int type, int n, const RECT& cell) {
    paintCell(dc, cell.left + 5, cell, cellText(type, n).c_str());
    if (type != owner.selectedType || n != owner.selectedOccurrence)
        return;
    dc.SelectStockObject(BLACK_PEN);
    dc.SelectStockObject(NULL_BRUSH);
    dc.Rectangle(cell.left, cell.top, cell.right, cell.bottom);
}

void TSXentrygridpane::mouseDown(int /*kind*/, int x, int y) {
    const int type = rowAt(y) - 1;
    if (type <= owner.database.lasttype) {
        if (type != owner.selectedType) {
            owner.selectedType = type;
            owner.limitSelection();
            InvalidateRect(false);
        }
        const int n = (x + hStep * hPos) / cellWidth + 1;
        if (n >= 1 && n <= owner.key.occurrences(type)) {
            owner.selectedOccurrence = n;
            InvalidateRect(false);
        }
    }
    UpdateWindow();
}

void TSXentrygridpane::afterVerticalScroll(int newPosition, int oldPosition) {
    TSXentrytypespane& names = *owner.typeNamesPane;
    names.UpdateWindow();
    names.vPos = vPos;
    names.ScrollWindow(0, (oldPosition - newPosition) * vStep);
    names.UpdateWindow();
}

int TSXentrygridpane::rowCount() const {
    return owner.database.lasttype + 1;
}

std::string TSXentrygridpane::rowText(int row) const {
    std::string text = owner.database.gettype(row - 1)->name.c_str();
    const int count = owner.key.occurrences(row - 1);
    for (int n = 1; n <= count; ++n)
        text += (n == 1 ? ": " : "; ") + cellText(row - 1, n);
    return text;
}

void TSXentrygridpane::selectRow(int row) {
    owner.selectedType = row - 1;
    owner.limitSelection();
}

void TSXentrygridpane::openRow() {
    owner.changeKeyCommand();
}

void TSXentrygridpane::onKeyDown(std::uint32_t key, std::uint32_t repeat, std::uint32_t flags) {
    if (key != VK_LEFT && key != VK_RIGHT)
        return TSXrowpane::onKeyDown(key, repeat, flags);
    owner.selectedOccurrence += key == VK_LEFT ? -1 : 1;
    owner.limitSelection();
    const int left = cellWidth * (owner.selectedOccurrence - 1);
    if (left < hStep * hPos || left + cellWidth > hStep * hPos + GetClientRect().right)
        horizontalScroll(SB_THUMBTRACK, left / hStep);
    InvalidateRect(false);
    RowSelected();
}

std::string TSXentrygridpane::cutText(int row, int x) const {
    const int n = (x + hStep * hPos) / cellWidth + 1;
    return n <= owner.key.occurrences(row - 1) ? wider(cellText(row - 1, n), cellWidth - 5) : std::string();
}

TSXentrytypespane::TSXentrytypespane(TSXentryframe& frame) : TSXrowpane("Data types", none), owner(frame) {
    hRange = 0;
    vRange = 0;
}

void TSXentrytypespane::paintRow(CDC& dc, int row, const RECT& place) {
    dc.SetBkColor(rowColour(false));
    paintCell(dc, nameX, {0, place.top, nameRight, place.bottom}, owner.database.gettype(row - 1)->name);
    fillRow(dc, nameRight, place, rowColour(false));
}

int TSXentrytypespane::rowCount() const {
    return owner.database.lasttype + 1;
}

std::string TSXentrytypespane::rowText(int row) const {
    return owner.database.gettype(row - 1)->name.c_str();
}

std::string TSXentrytypespane::cutText(int row, int /*x*/) const {
    return wider(rowText(row), nameRight - nameX);
}
