#include "toolkit/pane.h"

#include "platform/window/windowdc.h"

void TSXpane::onPaint() {
    CPaintDC dc(*this);
    paintPane(dc);
}

void TSXpane::onMouse(MouseAction action, unsigned flags, POINT place) {
    const bool shift = (flags & MK_SHIFT) != 0;
    const bool control = (flags & MK_CONTROL) != 0;
    const auto [x, y] = place;
    switch (action) {
    case MouseAction::leftPress:
        if (!shift && !control)
            mouseDown(leftPress, x, y);
        if (control)
            mouseDown(leftWithControl, x, y);
        if (shift)
            mouseDown(leftWithShift, x, y);
        break;
    case MouseAction::leftDouble:
        return mouseDown(leftDouble, x, y);
    case MouseAction::rightPress:
        return mouseDown(shift ? rightWithShift : rightPress, x, y);
    case MouseAction::leftRelease:
        return mouseUp(leftPress, x, y);
    case MouseAction::rightRelease:
        return mouseUp(rightPress, x, y);
    case MouseAction::move:
        return mouseMove(shift ? moveWithShift : leftPress, x, y);
    }
}

void TSXpane::onScroll(ScrollBarKind bar, int code, int position) {
    if (bar == SB_VERT)
        verticalScroll(code, position);
    else
        horizontalScroll(code, position);
}
