#include "toolkit/barbutton.h"

#include "platform/window/dc.h"
#include "toolkit/drawing.h"
#include "toolkit/icons.h"

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

using Pen = const CPen ButtonLook::*;
constexpr Pen face = &ButtonLook::facePen;
constexpr Pen light = &ButtonLook::lightPen;
constexpr Pen dark = &ButtonLook::darkPen;
constexpr Pen darkest = &ButtonLook::darkestPen;

// By state, from flat on, and whether it is latched: the left and upper sides, outer and inner, and then the
// lower and right ones.
constexpr Pen edges[3][2][4] = {{{face, nullptr, face, nullptr}, {light, light, darkest, dark}},
                                {{light, nullptr, dark, nullptr}, {light, light, darkest, dark}},
                                {{dark, nullptr, light, nullptr}, {dark, dark, light, light}}};

// Every second pixel inside of the edges.
void dither(CDC& dc, const BarButton& button) {
    const COLORREF colour = GetSysColor(COLOR_BTNFACE);
    for (int dx = 2; dx < button.width; ++dx) {
        for (int dy = 2 + dx % 2; dy < button.height; dy += 2)
            dc.SetPixel(button.x + dx, button.y + dy, colour);
    }
}

void drawEdges(CDC& dc, const BarButton& at, int state, const ButtonLook& look) {
    if (state < buttonFlat || state > buttonPressed)
        return;
    for (int i = 0; i < 4; ++i) {
        const Pen pen = edges[state - buttonFlat][at.latched != 0 ? 1 : 0][i];
        if (pen == nullptr)
            continue;
        const int inset = i % 2;
        const POINT topLeft = {at.x + inset, at.y + inset};
        const POINT end = {at.x + at.width - inset, at.y + at.height - inset};
        dc.SelectObject(&(look.*pen));
        dc.MoveTo(topLeft.x, end.y);
        dc.LineTo(i < 2 ? topLeft.x : end.x, i < 2 ? topLeft.y : end.y);
        dc.LineTo(end.x, topLeft.y);
    }
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

void ButtonLook::draw(CDC& dc, const BarButton& at, const CBitmap* bitmap, int state) const {
    dc.FillSolidRect(at.x + 1, at.y + 1, at.width - 1, at.height - 1, faceColour);
    drawEdges(dc, at, state, *this);
    drawContent(dc, at, bitmap, state == buttonPressed ? 1 : 0);
    if (at.ticked == 1)
        paintIcon(dc, at.x + 3, at.y + 3, 4);
    if (at.enabled != 1)
        dither(dc, at);
}
