#include "platform/window/internal/clientarea.h"

#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/rowsource.h"

namespace {

constexpr struct MouseRow {
    QEvent::Type event;
    Qt::MouseButton button;
    MouseAction action;
} mouseActions[] = {
    {QEvent::MouseButtonPress, Qt::LeftButton, MouseAction::leftPress},
    {QEvent::MouseButtonRelease, Qt::LeftButton, MouseAction::leftRelease},
    {QEvent::MouseButtonDblClick, Qt::LeftButton, MouseAction::leftDouble},
    {QEvent::MouseButtonPress, Qt::RightButton, MouseAction::rightPress},
    {QEvent::MouseButtonRelease, Qt::RightButton, MouseAction::rightRelease},
    {QEvent::MouseMove, Qt::NoButton, MouseAction::move},
};

unsigned flagsOf(const QMouseEvent& event) {
    return (event.modifiers() & Qt::ShiftModifier ? MK_SHIFT : 0U) |
           (event.modifiers() & Qt::ControlModifier ? MK_CONTROL : 0U);
}

} // namespace

ClientArea::ClientArea(WindowHost& host) : QWidget(&host), host_(host) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setCursor(Qt::ArrowCursor);
}

bool ClientArea::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Leave:
        if (host_.wnd() != nullptr && !host_.hasCapture())
            host_.wnd()->onMouseLeave();
        break;
    case QEvent::ToolTip:
        return showCutText(dynamic_cast<QHelpEvent&>(*event));
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
        host_.endCapture();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

bool ClientArea::showCutText(const QHelpEvent& event) {
    const RowSource* const rows = host_.rows();
    if (rows == nullptr)
        return false;
    const RECT first = rows->rowPlace(1);
    const int row = (event.y() - first.top) / (first.bottom - first.top) + 1;
    const bool there = row >= 1 && row <= rows->rowCount();
    QToolTip::showText(event.globalPos(), there ? hintOf(rows->cutText(row, event.x())) : QString(), this);
    return true;
}

// Copies the surface, one device pixel to one, also where the widget begins between two.
void ClientArea::paintEvent(QPaintEvent* /*event*/) {
    host_.paintInvalid();
    const Canvas& surface = *host_.surface();
    QPainter painter(this);
    const QPointF begin = painter.deviceTransform().map(QPointF(0, 0));
    painter.setWorldTransform(QTransform::fromScale(1 / surface.scale(), 1 / surface.scale()));
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(QPointF(std::floor(begin.x() + 0.5), std::floor(begin.y() + 0.5)) - begin,
                      surface.image());
    if (ring_ && hasFocus()) {
        painter.resetTransform();
        painter.setPen(QPen(Qt::black, 2, Qt::DashLine)); // on grey of any shade
        painter.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

// Who goes by the keyboard sees where he is; who clicks knows.
void ClientArea::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        ring_ = true;
    else if (event->reason() == Qt::MouseFocusReason)
        ring_ = false;
    update();
}

void ClientArea::focusOutEvent(QFocusEvent* /*event*/) {
    update();
}

void ClientArea::sendMouse(const QMouseEvent& event) const {
    const auto action = std::ranges::find_if(mouseActions, [&event](const MouseRow& row) {
        return row.event == event.type() && row.button == event.button();
    });
    if (host_.wnd() != nullptr && action != std::end(mouseActions))
        host_.wnd()->onMouse(action->action, flagsOf(event),
                             {static_cast<int>(std::floor(event.position().x())),
                              static_cast<int>(std::floor(event.position().y()))});
}

void ClientArea::mouseReleaseEvent(QMouseEvent* event) {
    sendMouse(*event);
    if (event->buttons() == Qt::NoButton)
        host_.endCapture();
}

void ClientArea::wheelEvent(QWheelEvent* event) {
    host_.wheel(*event);
}

void ClientArea::timerEvent(QTimerEvent* event) {
    host_.timeOut(event->timerId());
}
