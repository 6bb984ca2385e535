#include "platform/window/internal/screenoverlay.h"

#include <QApplication>
#include <QBitmap>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include "platform/window/internal/canvas.h"

std::shared_ptr<Canvas> screenCanvas() {
    const QScreen& screen = *QGuiApplication::primaryScreen();
    const QRect all = screen.virtualGeometry();
    return std::make_shared<Canvas>(all.size(), screen.devicePixelRatio(), all.topLeft());
}

ScreenOverlay::ScreenOverlay(std::shared_ptr<Canvas> canvas)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                           Qt::WindowDoesNotAcceptFocus),
      canvas_(std::move(canvas)) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
}

void ScreenOverlay::add(const QRect& device) {
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
        if (const QWidget* const active =
                QApplication::activeWindow()) // else a Wayland desktop can't place it
            windowHandle()->setTransientParent(active->windowHandle());
        show();
    }
    update();
}

void ScreenOverlay::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(rect(), canvas_->image(), canvas_->toDevice(geometry()));
}
