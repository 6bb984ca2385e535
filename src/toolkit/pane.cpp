#include "toolkit/pane.h"

#include "platform/window/windowdc.h"

void TSXpane::placeAt(int x, int y, int width, int height) {
    SetWindowPos(x, y, width, height);
}

void TSXpane::onCreate() {
    paneCreated();
}

void TSXpane::onSize(int type, int width, int height) {
    paneSized(type, width, height);
}

void TSXpane::onPaint() {
    CPaintDC dc(*this);
    paintPane(dc);
}

void TSXpane::onLeftButtonDown(unsigned flags, int x, int y) {
    if ((flags & (MK_CONTROL | MK_SHIFT)) == 0)
        mouseDown(leftPress, x, y);
    if ((flags & MK_CONTROL) != 0)
        mouseDown(leftWithControl, x, y);
    if ((flags & MK_SHIFT) != 0)
        mouseDown(leftWithShift, x, y);
}

void TSXpane::onLeftButtonUp(unsigned /*flags*/, int x, int y) {
    mouseUp(leftPress, x, y);
}

void TSXpane::onLeftButtonDoubleClick(unsigned /*flags*/, int x, int y) {
    mouseDown(leftDouble, x, y);
}

void TSXpane::onRightButtonDown(unsigned flags, int x, int y) {
    mouseDown((flags & MK_SHIFT) != 0 ? rightWithShift : rightPress, x, y);
}

void TSXpane::onRightButtonUp(unsigned /*flags*/, int x, int y) {
    mouseUp(rightPress, x, y);
}

void TSXpane::onMouseMove(unsigned flags, int x, int y) {
    mouseMove((flags & MK_SHIFT) != 0 ? moveWithShift : leftPress, x, y);
}

void TSXpane::onVScroll(int code, int position) {
    verticalScroll(code, position);
}

void TSXpane::onHScroll(int code, int position) {
    horizontalScroll(code, position);
}
