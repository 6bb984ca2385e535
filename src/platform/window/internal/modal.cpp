#include "platform/window/internal/modal.h"

#include <QPointer>
#include <QWidget>
#include <vector>

namespace {

int depth = 0;
std::vector<QPointer<QWidget>> kept;

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
