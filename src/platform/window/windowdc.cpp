#include "platform/window/windowdc.h"

#include <QApplication>
#include <QBitmap>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include "platform/window/internal/drawingstate.h"
#include "platform/window/internal/host.h"
#include "platform/window/wnd.h"

namespace {

std::shared_ptr<Canvas> surfaceOf(const CWnd& window) {
    return window.host() == nullptr ? nullptr : window.host()->surface();
}

// Of all monitors taken together.
std::shared_ptr<Canvas> screenCanvas() {
    const QScreen& screen = *QGuiApplication::primaryScreen();
    const QRect all = screen.virtualGeometry();
    return std::make_shared<Canvas>(all.size(), screen.devicePixelRatio(), all.topLeft());
}

// A frameless window over the part of the screen that was drawn on, without input and focus.
class ScreenOverlay : public QWidget {
public:
    explicit ScreenOverlay(std::shared_ptr<Canvas> canvas)
        : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                               Qt::WindowDoesNotAcceptFocus),
          canvas_(std::move(canvas)) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TranslucentBackground);
    }

    // Shows the place (device pixels of the canvas) as it is on the canvas now.
    void add(const QRect& device) {
        place_ |= canvas_->toLogical(device);
        const QImage alpha = canvas_->image().copy(canvas_->toDevice(place_)).createAlphaMask();
        const QRegion shape(QBitmap::fromImage(alpha.scaled(place_.size())));
        if (shape.isEmpty()) {
            hide();
            return;
        }
        setGeometry(place_);
        setMask(shape); // a screen without transparency would show the rest black
        if (!isVisible()) {
            create();
            const QWidget* const active = QApplication::activeWindow();
            if (active != nullptr) // else a Wayland desktop can't place it
                windowHandle()->setTransientParent(active->windowHandle());
            show();
        }
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(rect(), canvas_->image(), canvas_->toDevice(geometry()));
    }

private:
    const std::shared_ptr<Canvas> canvas_;
    QRect place_; // around all that was drawn on, in logical pixels of the screen
};

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
