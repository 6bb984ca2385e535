#include "toolkit/rowpane.h"

#include <algorithm>
#include <utility>

#include "platform/window/windowdc.h"

void TSXrowpane::paneCreated() {
    TSXscrollpane::paneCreated();
    SetRows(*this);
}

// Only what is in view, and a little beyond.
void TSXrowpane::paintPane(CDC& dc) {
    constexpr int margin = 3; // rows
    const RECT client = GetClientRect();
    const RECT paint = dc.GetClipBox();
    const int first = std::max(rowAt(paint.top) - 1 - margin, 1);
    const int last = std::min(rowAt(paint.bottom) - 1 + margin, rowCount());
    dc.SetTextColor(RGB(0, 0, 0));
    dc.SelectObject(getFont(plainFont));
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    dc.SetBkMode(OPAQUE);
    for (int row = first; row <= last; ++row)
        paintRow(dc, row, rowPlace(row));
    const int bottom = rowPlace(last).bottom;
    if (first <= last)
        dc.FillSolidRect(0, bottom, client.right, client.bottom - bottom, rowColour(false));
}

void TSXrowpane::paintCell(CDC& dc, int x, const RECT& cell, const char* text) {
    dc.ExtTextOutA(x, cell.top + 2, cell, text);
}

void TSXrowpane::fillRow(CDC& dc, int left, const RECT& place, COLORREF colour) {
    dc.FillSolidRect(left, place.top, place.right - left, rowHeight, colour);
}

std::string TSXrowpane::wider(const std::string& text, int width) const {
    CClientDC dc(this); // letters have another width at each scale
    dc.SelectObject(getFont(plainFont));
    return dc.GetTextExtentPoint32A(text.c_str()).cx > width ? text : std::string();
}

void TSXrowpane::setRanges(int width, int height) {
    const RECT client = GetClientRect();
    hRange = width < client.right ? 0 : width / hStep;
    vRange = height < client.bottom ? 0 : height / vStep;
    updateScrollBars();
    const int rest = rowHeight * rowCount() - client.bottom; // what doesn't fit into the pane
    const int lastPage = rest <= 0 ? 0 : (rest + vStep - 1) / vStep;
    if (std::exchange(knownRows_, rowCount()) > rowCount() && vPos > lastPage) {
        verticalScroll(SB_THUMBTRACK, lastPage);
        updateScrollBars();
    }
}

RECT TSXrowpane::rowPlace(int row) const {
    const int top = rowHeight * (row - 1) - vStep * vPos;
    return {0, top, GetClientRect().right, top + rowHeight};
}

void TSXrowpane::onKeyDown(std::uint32_t key, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) {
    const int page = std::max(GetClientRect().bottom / rowHeight - 1, 1);
    switch (key) {
    case VK_UP:
        return goToRow(selectedRow() - 1);
    case VK_DOWN:
        return goToRow(selectedRow() + 1);
    case VK_PRIOR:
        return goToRow(selectedRow() - page);
    case VK_NEXT:
        return goToRow(selectedRow() + page);
    case VK_HOME:
        return goToRow(1);
    case VK_END:
        return goToRow(rowCount());
    case VK_RETURN:
        if (selectedRow() <= rowCount())
            showRow(selectedRow()); // the wheel may have led away from it
        return openRow();
    default:
        break;
    }
}

void TSXrowpane::goToRow(int row) {
    if (rowCount() == 0)
        return;
    selectRow(std::clamp(row, 1, rowCount()));
    showRow(selectedRow());
    InvalidateRect(false);
    UpdateWindow();
    RowSelected();
}

void TSXrowpane::showRow(int row) {
    const RECT place = rowPlace(row);
    const int below = place.bottom - GetClientRect().bottom;
    if (place.top < 0)
        verticalScroll(SB_THUMBTRACK, rowHeight * (row - 1) / vStep);
    else if (below > 0)
        verticalScroll(SB_THUMBTRACK, vPos + (below + vStep - 1) / vStep);
}
