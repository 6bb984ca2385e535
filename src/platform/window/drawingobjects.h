// Pens, brushes and fonts: plain values that a device context draws with while they are selected. They hold
// nothing of the window system and may outlive it.
#pragma once

#include <string>
#include <utility>

#include "platform/system/cobject.h"
#include "platform/window/colour.h"

// A solid pen, one pixel wide.
class CPen : public CObject {
public:
    explicit CPen(COLORREF penColour) : colour(penColour) {}
    const COLORREF colour;
};

// A solid brush.
class CBrush : public CObject {
public:
    explicit CBrush(COLORREF brushColour) : colour(brushColour) {}
    const COLORREF colour;
};

// The description of a font, without width, underline and strike-out.
struct LOGFONT {
    int height = 0;     // negative: the height of a letter's em in pixels, the only form that is used
    int escapement = 0; // direction of the line and of its letters, in tenths of a degree, counter-clockwise
    int weight = 400;   // 700 and above is bold
    bool italic = false;
    std::string face; // looked up through the font configuration, which knows substitutes of the same widths

    bool operator==(const LOGFONT& other) const = default;
};

class CFont : public CObject {
public:
    explicit CFont(LOGFONT font) : description(std::move(font)) {}
    const LOGFONT description;
};

// Objects that are always there: a device context selects them by number.
enum StockObject : int {
    WHITE_BRUSH = 0,
    BLACK_BRUSH = 4,
    NULL_BRUSH = 5,
    WHITE_PEN = 6,
    BLACK_PEN = 7,
    NULL_PEN = 8,
    SYSTEM_FONT = 13,
};
