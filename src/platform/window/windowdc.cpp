#include "platform/window/windowdc.h"

#include <QPointer>

#include "platform/window/internal/drawingstate.h"
#include "platform/window/internal/host.h"
#include "platform/window/internal/screenoverlay.h"
#include "platform/window/wnd.h"

namespace {

std::shared_ptr<Canvas> surfaceOf(const CWnd& window) {
    return window.host() == nullptr ? nullptr : window.host()->surface();
}

} // namespace

CPaintDC::CPaintDC(CWnd& window) : CDC(surfaceOf(window)) {
    if (!state_->canvas)
        return;
    const QRegion region = window.host()->takeUpdateRegion();
    state_->clip = state_->canvas->toDevice(region);
    state_->clipBox = region.boundingRect();
}

CClientDC::CClientDC(const CWnd* window) : CDC(window == nullptr ? screenCanvas() : surfaceOf(*window)) {
    if (!state_->canvas)
        return;
    if (window == nullptr) {
        auto overlay = std::make_unique<ScreenOverlay>(state_->canvas);
        state_->drawn = [&shown = *overlay](const QRect& device) { shown.add(device); };
        state_->overlay = std::move(overlay);
        return;
    }
    const QPointer<QWidget> client(window->host()->client());
    state_->drawn = [client, &canvas = *state_->canvas](const QRect& device) {
        if (client)
            client->update(canvas.toLogical(device));
    };
}

CClientDC::~CClientDC() = default;
