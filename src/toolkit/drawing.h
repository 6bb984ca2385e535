// The one set of colours, brushes, pens and fonts that all windows draw with. The set is made once
// from a base colour, when the window system is up, and does not follow a later change of the desktop's
// colours. What windows use has a name, the rest a number alone.
#pragma once

#include <array>
#include <cstdint>

#include "platform/window/colour.h"
#include "platform/window/drawingobjects.h"
#include "platform/window/geometry.h"

class CDC;

// The colour written 0xRRGGBB.
constexpr COLORREF hexColour(std::uint32_t rrggbb) {
    return RGB(static_cast<int>(rrggbb >> 16), static_cast<int>(rrggbb >> 8), static_cast<int>(rrggbb));
}

// Red, green and blue of the base colour, each from 0 to 255.
void initDrawing(const std::array<std::int32_t, 3>& base);
void releaseDrawing();

enum ColourNumber : int {
    darkEdgeColour = -1,
    lightEdgeColour = 0,
    baseColour = 1,
    darkColour = 2,
    darkerColour = 3,
    greenColour = 4,
    accentColour = 101, // of the selected row
};
// Other numbers, and all outside of initDrawing and releaseDrawing, are black.
COLORREF getColour(int number);

// The objects belong to the set and live until releaseDrawing; null outside of initDrawing and it.
enum BrushNumber : int { baseBrush = 1, darkBrush = 2, buttonFaceBrush = 201 };
// Besides: 3 and 101 as the colours, 4 green, 5 blue, 6 red; else the base.
const CBrush* getBrush(int number);

enum PenNumber : int { darkEdgePen = 2, desktopHighlightPen = 200, desktopShadowPen = 202 };
// Besides: 1 light edge, 3 base, 5 red, 6 blue, 199, 201 and 203 the desktop's light edge, button face and
// dark shadow; else 1.
const CPen* getPen(int number);

enum FontNumber : int { plainFont = 1, boldFont = 2 };
// Besides: 3 and 7 italic, 4 small, 5 fixed pitch, 6 tiny, 101 and 102 upwards; else the plain one.
const CFont* getFont(int number);

// With the pen that is selected, without the end point.
void drawLine(CDC& dc, POINT from, POINT to);
