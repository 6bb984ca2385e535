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

} // namespace

TSXbuttonbar::TSXbuttonbar(TSXframe& frame) : owner(frame), buttons(1), bitmaps(1) {}

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
    CClientDC dc(this);
    dc.SelectObject(getFont(plainFont));
    int left = margin;
    for (int i = 1; i <= buttonCount; ++i) {
        BarButton& at = button(i);
        if (at.width == 0)
            at.width = std::max({at.iconCode > 0 ? iconWidth : 0, at.bitmapWidth + 8,
                                 dc.GetTextExtentPoint32A(at.label).cx + 14});
        at.x = left;
        at.y = margin;
        at.height = std::max(GetClientRect().bottom - 2 * margin - 1, 0);
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
    if (index >= 1 && index <= buttonCount)
        look.draw(dc, button(index), bitmaps[static_cast<std::size_t>(index)].get(), state);
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
    hint =
        std::make_unique<TSXhintwindow>(*this, POINT{at.x, at.y + at.height + 5}, at.hintText, at.hintDetail);
}

void TSXbuttonbar::hideHint() {
    hint.reset();
}
