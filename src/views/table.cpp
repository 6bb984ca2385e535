#include "views/table.h"

#include "platform/window/dc.h"

void beginTable(CDC& dc) {
    dc.SetTextColor(RGB(0, 0, 0));
    dc.SelectObject(getFont(plainFont));
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    dc.SetBkMode(OPAQUE);
}

COLORREF rowColour(bool selected) {
    return getColour(selected ? accentColour : baseColour);
}

void paintCell(CDC& dc, int x, const RECT& cell, const char* text) {
    dc.ExtTextOutA(x, cell.top + 2, cell, text);
}

void fillRow(CDC& dc, int left, int top, int width, COLORREF colour) {
    dc.FillSolidRect(left, top, width - left, rowHeight, colour);
}

void fillBelow(CDC& dc, int bottom, int width, int height) {
    dc.FillSolidRect(0, bottom, width, height - bottom, rowColour(false));
}
