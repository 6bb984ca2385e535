// What the panes have in common: each is a table of rows of one height, painted from top to bottom with text
// in clipped cells and plain colour for the rest.
#pragma once

#include <memory>

#include "platform/window/geometry.h"
#include "platform/window/wnd.h"
#include "toolkit/drawing.h"
#include "toolkit/rowpane.h"

class CDC;

constexpr int rowHeight = TSXrowpane::rowHeight;

// Makes a pane and its window; the frame lays it out afterwards.
template <class Pane, class Frame> std::unique_ptr<Pane> makePane(Frame& owner) {
    auto pane = std::make_unique<Pane>(owner);
    pane->Create(AfxRegisterWndClass(getBrush(baseBrush)), RECT{20, 20, 100, 100}, owner);
    return pane;
}

// The highest scroll step of a table so many pixels long; 0 when it is shorter than the pane.
constexpr int scrollSteps(int length, int paneLength, int step) {
    return length < paneLength ? 0 : length / step;
}

// Font, alignment and colours that each paint starts with.
void beginTable(CDC& dc);
COLORREF rowColour(bool selected);
// Fills the cell with the background colour and writes the text at x, as the context is set.
void paintCell(CDC& dc, int x, const RECT& cell, const char* text);
// Fills the row to the right of its last cell, which ends at left, up to the pane's width.
void fillRow(CDC& dc, int left, int top, int width, COLORREF colour);
// Fills the pane, width by height, from the bottom of its last row.
void fillBelow(CDC& dc, int bottom, int width, int height);
