#include "toolkit/barbutton.h"

#include "platform/window/bitmap.h"
#include "platform/window/dc.h"
#include "toolkit/drawing.h"

namespace {

constexpr COLORREF iconShadow = RGB(128, 128, 128);

struct SparkRing {
    int along; // pixels from the middle, along either axis
    int across;
    COLORREF colour;
};

constexpr SparkRing spark[] = {
    {0, 0, RGB(255, 210, 0)},   {1, 0, RGB(255, 255, 0)},   {1, 1, RGB(230, 230, 192)},
    {2, 0, RGB(230, 230, 192)}, {3, 0, RGB(240, 240, 230)}, {4, 0, RGB(250, 250, 240)},
};

void drawSpark(CDC& dc, int x, int y) {
    for (const SparkRing& ring : spark) {
        dc.SetPixel(x + ring.along, y + ring.across, ring.colour);
        dc.SetPixel(x - ring.along, y - ring.across, ring.colour);
        dc.SetPixel(x - ring.across, y + ring.along, ring.colour);
        dc.SetPixel(x + ring.across, y - ring.along, ring.colour);
    }
}

void drawButtonIcon(CDC& dc, int x, int y, int code) {
    if (code >= 11000)
        ++x;
    paintIcon(dc, x + 6, y + 5, code % 1000);
    if (code < 10000 || code > 12000)
        return;
    dc.FillSolidRect(x + 7, y + 20, 15, 1, iconShadow);
    dc.FillSolidRect(x + 21, y + 6, 1, 15, iconShadow);
    if (code < 11001)
        drawSpark(dc, x + 7, y + 6);
}

struct EdgePens {
    const CPen* outer = nullptr;
    const CPen* inner = nullptr; // none without a double edge
};

// Two sides, from the lower left corner of the rectangle to its upper right one.
void drawSides(CDC& dc, const CPen* pen, const RECT& at, bool topLeft) {
    if (pen == nullptr)
        return;
    dc.SelectObject(pen);
    dc.MoveTo(at.left, at.bottom);
    dc.LineTo(topLeft ? at.left : at.right, topLeft ? at.top : at.bottom);
    dc.LineTo(at.right, at.top);
}

// Every second pixel inside of the edges.
void dither(CDC& dc, const BarButton& button) {
    const COLORREF colour = GetSysColor(COLOR_BTNFACE);
    for (int dx = 2; dx < button.width; ++dx) {
        for (int dy = 2 + dx % 2; dy < button.height; dy += 2)
            dc.SetPixel(button.x + dx, button.y + dy, colour);
    }
}

void drawEdges(CDC& dc, const BarButton& at, int state, const ButtonLook& look) {
    const bool latched = at.latched != 0;
    EdgePens topLeft;
    EdgePens bottomRight;
    if (state == buttonPressed) {
        topLeft = {&look.darkPen, &look.darkPen};
        bottomRight = {&look.lightPen, &look.lightPen};
    } else if (latched && (state == buttonRaised || state == buttonFlat)) {
        topLeft = {&look.lightPen, &look.lightPen};
        bottomRight = {&look.darkestPen, &look.darkPen};
    } else if (state == buttonRaised) {
        topLeft.outer = &look.lightPen;
        bottomRight.outer = &look.darkPen;
    } else if (state == buttonFlat) {
        topLeft.outer = bottomRight.outer = &look.facePen;
    }
    const RECT outside = {at.x, at.y, at.x + at.width, at.y + at.height};
    const RECT inside = {outside.left + 1, outside.top + 1, outside.right - 1, outside.bottom - 1};
    drawSides(dc, topLeft.outer, outside, true);
    drawSides(dc, latched ? topLeft.inner : nullptr, inside, true);
    drawSides(dc, bottomRight.outer, outside, false);
    drawSides(dc, latched ? bottomRight.inner : nullptr, inside, false);
    dc.SelectStockObject(BLACK_PEN);
}

void drawContent(CDC& dc, const BarButton& at, const CBitmap* bitmap, int offset) {
    const int middleX = at.x + at.width / 2;
    const int middleY = at.y + at.height / 2;
    if (!at.label.empty()) {
        dc.SelectObject(getFont(plainFont));
        dc.SetBkMode(TRANSPARENT);
        dc.SetTextAlign(TA_CENTER);
        dc.TextOutA(middleX + offset, middleY + offset - 7, at.label);
        dc.SelectStockObject(SYSTEM_FONT);
    }
    if (bitmap != nullptr) {
        CDC picture;
        picture.CreateCompatibleDC(dc);
        picture.SelectObject(bitmap);
        dc.BitBlt(middleX - at.bitmapWidth / 2 + offset, middleY - at.bitmapHeight / 2 + offset,
                  at.bitmapWidth, at.bitmapHeight, picture, 0, 0);
    }
    if (at.iconCode > 0)
        drawButtonIcon(dc, at.x + offset, at.y + offset, at.iconCode);
}

} // namespace

ButtonLook::ButtonLook()
    : facePen(GetSysColor(COLOR_BTNFACE)), lightPen(GetSysColor(COLOR_BTNHIGHLIGHT)),
      darkPen(GetSysColor(COLOR_BTNSHADOW)), darkestPen(GetSysColor(COLOR_3DDKSHADOW)),
      faceColour(GetSysColor(COLOR_BTNFACE)) {}

void drawBarButton(CDC& dc, const BarButton& at, const CBitmap* bitmap, int state, const ButtonLook& look) {
    dc.FillSolidRect(at.x + 1, at.y + 1, at.width - 1, at.height - 1, look.faceColour);
    drawEdges(dc, at, state, look);
    drawContent(dc, at, bitmap, state == buttonPressed ? 1 : 0);
    if (at.ticked == 1)
        paintIcon(dc, at.x + 3, at.y + 3, 4);
    if (at.enabled != 1)
        dither(dc, at);
}
