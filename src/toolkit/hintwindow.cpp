#include "toolkit/hintwindow.h"

#include <algorithm>

#include "platform/window/msgbox.h"
#include "toolkit/drawing.h"
#include "toolkit/pane.h"

namespace {

constexpr COLORREF paper = RGB(250, 230, 200);
constexpr COLORREF frame = RGB(128, 128, 128);
constexpr COLORREF shadowColour = RGB(100, 100, 100);
constexpr int shadowSize = 2;

} // namespace

TSXhintwindow::TSXhintwindow(const TSXpane& pane, POINT corner, const char* line1, const char* line2)
    : text1(line1), text2(line2) {
    const POINT place = pane.ClientToScreen(corner);
    x = place.x;
    y = place.y;
    screenContext.SelectObject(getFont(plainFont));
    measure();
    saveScreen();
    draw();
    screenContext.SelectStockObject(SYSTEM_FONT);
}

TSXhintwindow::~TSXhintwindow() {
    screenContext.BitBlt(x, y, width, height, saveContext, 0, 0);
}

void TSXhintwindow::measure() {
    width = screenContext.GetTextExtentPoint32A(text1).cx + 10;
    height = 18;
    if (!text2.empty()) {
        width = std::max(width, screenContext.GetTextExtentPoint32A(text2).cx + 10);
        height += 16;
    }
    x = std::min(x, GetSystemMetrics(SM_CXSCREEN) - 2 - width);
}

void TSXhintwindow::saveScreen() {
    saveContext.CreateCompatibleDC(screenContext);
    savedScreen.CreateCompatibleBitmap(screenContext, width, height);
    saveContext.SelectObject(&savedScreen);
    saveContext.BitBlt(0, 0, width, height, screenContext, x, y);
}

void TSXhintwindow::draw() {
    CDC& dc = screenContext;
    dc.FillSolidRect(x, y, width - shadowSize, height - shadowSize, paper);
    const CPen framePen(frame);
    dc.SelectStockObject(NULL_BRUSH);
    dc.SelectObject(&framePen);
    dc.Rectangle(x, y, x + width - 1, y + height - 1);
    dc.SelectStockObject(BLACK_PEN);
    dc.FillSolidRect(x + 2, y + height - shadowSize, width - 2, shadowSize, shadowColour);
    dc.FillSolidRect(x + width - shadowSize, y + 2, shadowSize, height - 2, shadowColour);
    dc.SetBkMode(TRANSPARENT);
    dc.TextOutA(x + 5, y + 1, text1);
    if (!text2.empty())
        dc.TextOutA(x + 5, y + 16, text2);
}
