#include "platform/window/internal/modal.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>
#include <vector>

namespace {

int depth = 0;
std::vector<QPointer<QWidget>> kept;

class DiscardFilter : public QObject {
protected:
    bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
        switch (event->type()) {
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::Close:
            event->setAccepted(event->type() == QEvent::ShortcutOverride); // else it goes on as a shortcut
            return true;
        default:
            return false;
        }
    }
};

} // namespace

ModalScope::ModalScope() {
    ++depth;
}

ModalScope::~ModalScope() {
    if (--depth > 0)
        return;
    for (const QPointer<QWidget>& widget : kept) {
        if (widget)
            widget->deleteLater();
    }
    kept.clear();
}

void retire(QWidget* widget) {
    widget->hide();
    if (depth == 0)
        widget->deleteLater();
    else
        kept.emplace_back(widget);
}

HeldKeyFilter::HeldKeyFilter() {
    qApp->installEventFilter(this);
}

// Of a key that is held an X server tells a release and a press at one time, again and again, also where the
// first press went to another program; not each such pair is marked as repeated.
bool HeldKeyFilter::eventFilter(QObject* /*receiver*/, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    const auto& key = dynamic_cast<QKeyEvent&>(*event);
    if (event->type() == QEvent::KeyRelease) {
        released_ = key.key();
        releaseTime_ = key.timestamp();
        return false;
    }
    const bool held = key.isAutoRepeat() || (key.key() == released_ && key.timestamp() == releaseTime_);
    return held && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter ||
                    QApplication::activePopupWidget() != nullptr);
}

void discardInput() {
    DiscardFilter filter;
    qApp->installEventFilter(&filter);
    QGuiApplication::sync();
}
