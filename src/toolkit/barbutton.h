// One button of a button bar: its record, and how it is drawn.
#pragma once

#include <cstdint>

#include "platform/system/text.h"
#include "platform/window/drawingobjects.h"

class CBitmap;
class CDC;

struct BarButton {
    std::int32_t x = 0, y = 0, width = 0, height = 0; // client pixels, set by the bar; a width above 0 stays
    std::uint32_t commandId = 0;
    Text<60> label = {};
    std::int32_t bitmapWidth = 0, bitmapHeight = 0;
    Text<100> hintText = {}; // no hint when empty
    Text<100> hintDetail = {};
    std::int32_t latched = 0;  // not 0: a double edge in all states
    std::int32_t iconCode = 0; // icon; from 10000 with a shadow and a spark, from 11001 with a shadow alone
    std::int32_t enabled = 1;  // anything else: dithered, and not to be pressed
    std::int32_t ticked = 0;
};

enum ButtonState : int { buttonFlat = -1, buttonRaised = 0, buttonPressed = 1 };

// The desktop's colours when it is made.
struct ButtonLook {
    ButtonLook();

    // Fill, edges, label, bitmap where there is one, icon and tick, shifted where it is pressed, and dithered
    // where it is not enabled.
    void draw(CDC& dc, const BarButton& button, const CBitmap* bitmap, int state) const;

    const CPen facePen, lightPen, darkPen, darkestPen;
    COLORREF faceColour;
};
