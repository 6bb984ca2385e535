// The one set of colours, brushes, pens and fonts that all windows draw with, by number, and the painter of
// the small pictures. The set is made once from a base colour, when the window system is up, and does not
// follow a later change of the desktop's colours.
#pragma once

#include <array>
#include <cstdint>

#include "platform/window/colour.h"
#include "platform/window/drawingobjects.h"

class CDC;

// The colour written 0xRRGGBB.
constexpr COLORREF hexColour(std::uint32_t rrggbb) {
    return RGB(static_cast<int>(rrggbb >> 16), static_cast<int>(rrggbb >> 8), static_cast<int>(rrggbb));
}

// Red, green and blue of the base colour, each from 0 to 255.
void initDrawing(const std::array<std::int32_t, 3>& base);
void releaseDrawing();

// 1 base, 2 and 3 darker, -1 dark edge, 0 light edge, 101 accent, 4 green. Other numbers, and all outside of
// initDrawing and releaseDrawing, are black.
COLORREF getColour(int number);

// The objects belong to the set and live until releaseDrawing; null outside of initDrawing and it.
// Brushes: 1 to 3 and 101 as the colours, 4 green, 5 blue, 6 red, 201 the desktop's button face; else 1.
const CBrush* getBrush(int number);
// Pens: 1 light edge, 2 dark edge, 3 base, 5 red, 6 blue, 199 to 203 the desktop's light edge, highlight,
// button face, shadow and dark shadow; else 1.
const CPen* getPen(int number);
// Fonts: 1 plain, 2 bold and larger, 3 and 7 italic, 4 small, 5 fixed pitch, 6 tiny, 101 and 102 upwards;
// else 1.
const CFont* getFont(int number);

// Draws icon number (see icons.h) at (x, y), over what is there; a number without a picture draws nothing.
// Leaves the context's background colour changed.
void paintIcon(CDC& dc, int x, int y, int number);
