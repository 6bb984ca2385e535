#include "toolkit/frame.h"

#include "platform/window/statusbarctrl.h"
#include "platform/window/windowdc.h"
#include "toolkit/drawing.h"

namespace {

constexpr int statusStrip = 20; // pixels at the bottom of the client area
constexpr int statusGap = 2;    // from the line above the strip to the bar
constexpr int statusHeight = 21;
constexpr std::uint32_t lastCommand = 9001;

} // namespace

TSXframe::TSXframe() = default;
TSXframe::~TSXframe() = default;

POINT TSXframe::getInnerSize() const {
    const RECT client = GetClientRect();
    return {client.right - 1, client.bottom - (hasStatusBar == 1 ? statusStrip : 1)};
}

void TSXframe::onCreate() {
    if (placement != nullptr)
        SetWindowPlacement(*placement);
    if (hasStatusBar == 1) {
        statusBar = std::make_unique<CStatusBarCtrl>();
        statusBar->Create(*this);
    }
    frameCreated();
}

void TSXframe::onDestroy() {
    if (placement != nullptr)
        *placement = GetWindowPlacement();
}

void TSXframe::onSize(int type, int width, int height) {
    frameSized(type, width, height);
    if (hasStatusBar != 1 || !statusBar)
        return;
    const auto [right, bottom] = getInnerSize();
    statusBar->SetWindowPos(0, bottom + statusGap, right, statusHeight);
}

void TSXframe::onPaint() {
    CPaintDC dc(*this);
    dc.SelectStockObject(BLACK_PEN);
    paintFrame(dc);
    if (hasBorder != 0)
        drawBorder(dc);
    dc.SelectStockObject(BLACK_PEN);
    dc.SelectStockObject(BLACK_BRUSH);
    dc.SelectStockObject(SYSTEM_FONT);
}

// Dark on the left and at the top, light on the right and above the status bar: the area looks sunken.
void TSXframe::drawBorder(CDC& dc) const {
    const RECT client = GetClientRect();
    const auto [right, bottom] = getInnerSize();
    dc.SelectObject(getPen(desktopShadowPen));
    drawLine(dc, {0, 0}, {0, client.bottom});
    drawLine(dc, {0, 0}, {client.right, 0});
    dc.SelectObject(getPen(desktopHighlightPen));
    drawLine(dc, {right, 0}, {right, client.bottom});
    drawLine(dc, {0, bottom}, {client.right, bottom});
}

void TSXframe::onClose() {
    if (canClose() != 0)
        DestroyWindow(); // and with it this object
}

void TSXframe::onCommand(std::uint32_t id) {
    if (id >= 1 && id <= lastCommand)
        frameCommand(id);
}

void TSXframe::onMouse(MouseAction action, unsigned flags, POINT place) {
    const int kind = (flags & MK_SHIFT) != 0 ? 2 : 1;
    if (action == MouseAction::leftPress)
        leftDown(kind, place.x, place.y);
    else if (action == MouseAction::leftRelease)
        leftUp(1, place.x, place.y);
    else if (action == MouseAction::move)
        frameMouseMove(kind, place.x, place.y);
}
