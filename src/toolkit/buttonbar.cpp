#include "toolkit/buttonbar.h"

#include <algorithm>
#include <utility>

#include "platform/window/msgbox.h"
#include "platform/window/windowdc.h"
#include "toolkit/drawing.h"
#include "toolkit/frame.h"

namespace {

constexpr unsigned repeatPeriod = 50; // milliseconds
constexpr unsigned hoverDelay = 600;
constexpr int repeatDelay = 20; // ticks before a held button repeats by itself
constexpr int margin = 2;       // pixels around the row, and between two buttons
constexpr int iconWidth = 28;   // of a button that holds an icon alone
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

} // namespace

TSXbuttonbar::TSXbuttonbar(TSXframe& frame)
    : owner(frame), buttons(1), bitmaps(1), facePen(GetSysColor(COLOR_BTNFACE)),
      lightPen(GetSysColor(COLOR_BTNHIGHLIGHT)), darkPen(GetSysColor(COLOR_BTNSHADOW)),
      darkestPen(GetSysColor(COLOR_3DDKSHADOW)), faceColour(GetSysColor(COLOR_BTNFACE)) {}

TSXbuttonbar::~TSXbuttonbar() = default;

int TSXbuttonbar::addButton(const BarButton& button, std::unique_ptr<CBitmap> bitmap) {
    if (buttonCount == capacity)
        return 0;
    buttons.push_back(button);
    bitmaps.push_back(std::move(bitmap));
    ++buttonCount;
    layOut();
    InvalidateRect(true);
    return buttonCount;
}

int TSXbuttonbar::buttonAt(int x, int y) const {
    for (int i = 1; i <= buttonCount; ++i) {
        const BarButton& at = buttons[static_cast<std::size_t>(i)];
        if (x >= at.x && x <= at.x + at.width && y >= at.y && y <= at.y + at.height)
            return i;
    }
    return 0;
}

// One row from the left, as high as the bar.
void TSXbuttonbar::layOut() {
    int width = 0;
    int height = 0;
    getClientSize(width, height);
    CClientDC dc(this);
    dc.SelectObject(getFont(1));
    int left = margin;
    for (int i = 1; i <= buttonCount; ++i) {
        BarButton& at = button(i);
        if (at.width == 0)
            at.width = std::max({at.iconCode > 0 ? iconWidth : 0, at.bitmapWidth + 8,
                                 dc.GetTextExtentPoint32A(at.label).cx + 14});
        at.x = left;
        at.y = margin;
        at.height = std::max(height - 2 * margin - 1, 0);
        left += at.width + 1 + margin;
    }
    dc.SelectStockObject(SYSTEM_FONT);
}

void TSXbuttonbar::paneSized(int /*type*/, int /*width*/, int /*height*/) {
    layOut();
}

void TSXbuttonbar::paintPane(CDC& dc) {
    for (int i = 1; i <= buttonCount; ++i)
        redraw(dc, i);
}

void TSXbuttonbar::drawButton(CDC& dc, int index, int state) {
    if (index < 1 || index > buttonCount)
        return;
    const BarButton& at = button(index);
    dc.FillSolidRect(at.x + 1, at.y + 1, at.width - 1, at.height - 1, faceColour);
    drawEdges(dc, at, state);
    drawContent(dc, index, state == buttonPressed ? 1 : 0);
    if (at.ticked == 1)
        paintIcon(dc, at.x + 3, at.y + 3, 4);
    if (at.enabled != 1)
        dither(dc, at);
}

void TSXbuttonbar::drawEdges(CDC& dc, const BarButton& at, int state) {
    const bool latched = at.latched != 0;
    EdgePens topLeft;
    EdgePens bottomRight;
    if (state == buttonPressed) {
        topLeft = {&darkPen, &darkPen};
        bottomRight = {&lightPen, &lightPen};
    } else if (latched && (state == buttonRaised || state == buttonFlat)) {
        topLeft = {&lightPen, &lightPen};
        bottomRight = {&darkestPen, &darkPen};
    } else if (state == buttonRaised) {
        topLeft.outer = &lightPen;
        bottomRight.outer = &darkPen;
    } else if (state == buttonFlat) {
        topLeft.outer = bottomRight.outer = &facePen;
    }
    const RECT outside = {at.x, at.y, at.x + at.width, at.y + at.height};
    const RECT inside = {outside.left + 1, outside.top + 1, outside.right - 1, outside.bottom - 1};
    drawSides(dc, topLeft.outer, outside, true);
    drawSides(dc, latched ? topLeft.inner : nullptr, inside, true);
    drawSides(dc, bottomRight.outer, outside, false);
    drawSides(dc, latched ? bottomRight.inner : nullptr, inside, false);
    dc.SelectStockObject(BLACK_PEN);
}

void TSXbuttonbar::drawContent(CDC& dc, int index, int offset) {
    const BarButton& at = button(index);
    const int middleX = at.x + at.width / 2;
    const int middleY = at.y + at.height / 2;
    if (!at.label.empty()) {
        dc.SelectObject(getFont(1));
        dc.SetBkMode(TRANSPARENT);
        dc.SetTextAlign(TA_CENTER);
        dc.TextOutA(middleX + offset, middleY + offset - 7, at.label);
        dc.SelectStockObject(SYSTEM_FONT);
    }
    if (const CBitmap* const bitmap = bitmaps[static_cast<std::size_t>(index)].get()) {
        CDC picture;
        picture.CreateCompatibleDC(dc);
        picture.SelectObject(bitmap);
        dc.BitBlt(middleX - at.bitmapWidth / 2 + offset, middleY - at.bitmapHeight / 2 + offset,
                  at.bitmapWidth, at.bitmapHeight, picture, 0, 0);
    }
    if (at.iconCode > 0)
        drawButtonIcon(dc, at.x + offset, at.y + offset, at.iconCode);
}

int TSXbuttonbar::stateOf(int index) const {
    if (pressActive == 1 && index != pressedIndex)
        return buttonFlat;
    if (pressActive == 1)
        return hoverIndex == pressedIndex ? buttonPressed : buttonRaised;
    const bool raised = index == hoverIndex && buttons[static_cast<std::size_t>(index)].enabled == 1;
    return raised ? buttonRaised : buttonFlat;
}

void TSXbuttonbar::redraw(CDC& dc, int index) {
    drawButton(dc, index, stateOf(index));
}

void TSXbuttonbar::mouseDown(int kind, int x, int y) {
    const int index = buttonAt(x, y);
    if (kind >= rightPress || pressActive == 1 || index == 0 || button(index).enabled != 1)
        return;
    hoverOver(index);
    KillTimer(hoverTimer);
    hideHint();
    SetCapture();
    pressContext = std::make_unique<CClientDC>(this);
    pressedIndex = index;
    pressActive = 1;
    repeatCount = 0;
    repeated = false;
    redraw(*pressContext, index);
    SetTimer(repeatTimer, repeatPeriod);
}

void TSXbuttonbar::mouseUp(int kind, int x, int y) {
    if (kind != leftPress || pressActive != 1)
        return;
    const int index = buttonAt(x, y);
    const bool chosen = index == pressedIndex && !repeated;
    const std::uint32_t command = button(pressedIndex).commandId;
    ReleaseCapture(); // which ends the press
    hoverOver(index);
    if (chosen)
        owner.frameCommand(command); // may end the frame and this bar with it
}

void TSXbuttonbar::mouseMove(int /*kind*/, int x, int y) {
    hoverOver(buttonAt(x, y));
}

void TSXbuttonbar::hoverOver(int index) {
    if (index == hoverIndex)
        return;
    const int before = hoverIndex;
    hoverIndex = index;
    hideHint();
    if (pressContext) {
        redraw(*pressContext, pressedIndex);
        return;
    }
    CClientDC dc(this);
    redraw(dc, before);
    redraw(dc, index);
    KillTimer(hoverTimer);
    if (index != 0 && hintShown == 1)
        showHint();
    else if (index != 0)
        SetTimer(hoverTimer, hoverDelay);
}

void TSXbuttonbar::onMouseLeave() {
    hoverOver(0);
    hintShown = 0;
}

void TSXbuttonbar::onCaptureChanged() {
    KillTimer(repeatTimer);
    if (pressContext) {
        drawButton(*pressContext, pressedIndex, buttonFlat);
        pressContext.reset();
        pressedIndex = pressActive = hoverIndex = hintShown = 0;
    }
    hideHint();
}

void TSXbuttonbar::onTimer(std::uint32_t id) {
    if (id == repeatTimer) {
        repeatPressed();
    } else if (id == hoverTimer) {
        KillTimer(hoverTimer);
        hintShown = 1;
        showHint();
    }
}

// While Shift is down the button repeats at once and at every tick.
void TSXbuttonbar::repeatPressed() {
    if (pressedIndex == 0 || pressActive != 1 || hoverIndex != pressedIndex)
        return;
    ++repeatCount;
    const bool due = repeatCount > repeatDelay && repeatCount % 4 == 0;
    if (!due && GetKeyState(VK_SHIFT) >= 0)
        return;
    repeated = true;
    owner.frameCommand(button(pressedIndex).commandId); // may end the frame and this bar with it
}

void TSXbuttonbar::showHint() {
    hideHint();
    if (hoverIndex < 1 || hoverIndex > buttonCount || button(hoverIndex).hintText.empty())
        return;
    const BarButton& at = button(hoverIndex);
    hint = std::make_unique<TSXhintwindow>(*this, at.x, at.y + at.height + 5, at.hintText, at.hintDetail);
}

void TSXbuttonbar::hideHint() {
    hint.reset();
}
