// The rows of a window as a list of texts for screen readers.
#include <QAccessibleWidget>
#include <map>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/rowsource.h"

namespace {

class AccessibleRow : public QAccessibleInterface {
public:
    AccessibleRow(ClientArea& area, int number) : area_(&area), row_(number) {}

    bool isValid() const override { return rows() != nullptr && row_ <= rows()->rowCount(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(area_); }
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && isValid() ? unicodeOf(rows()->rowText(row_)) : QString();
    }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
    QRect rect() const override {
        if (!isValid())
            return {};
        const RECT place = rows()->rowPlace(row_);
        return {area_->mapToGlobal(QPoint(place.left, place.top)),
                QSize(place.right - place.left, place.bottom - place.top)};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.focusable = state.selectable = true;
        state.selected = isValid() && rows()->selectedRow() == row_;
        state.focused = state.selected && area_->hasFocus();
        state.offscreen =
            isValid() && !area_->rect().translated(area_->mapToGlobal(QPoint())).intersects(rect());
        return state;
    }

private:
    const RowSource* rows() const { return area_ ? area_->host().rows() : nullptr; }

    const QPointer<ClientArea> area_;
    const int row_; // from 1
};

class AccessibleRows : public QAccessibleWidget {
public:
    explicit AccessibleRows(ClientArea& area) : QAccessibleWidget(&area, QAccessible::List), area_(area) {}
    ~AccessibleRows() override {
        for (const auto& [index, id] : made_)
            QAccessible::deleteAccessibleInterface(id);
    }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name && rows() != nullptr ? unicodeOf(rows()->rowsName()) : QString();
    }
    int childCount() const override { return rows() == nullptr ? 0 : rows()->rowCount(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount())
            return nullptr;
        const auto [place, fresh] = made_.try_emplace(index);
        if (fresh) // the register owns it: NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks)
            place->second = QAccessible::registerAccessibleInterface(new AccessibleRow(area_, index + 1));
        return QAccessible::accessibleInterface(place->second);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        for (const auto& [index, id] : made_)
            if (QAccessible::accessibleInterface(id) == child)
                return index;
        return -1;
    }
    QAccessibleInterface* focusChild() const override {
        return rows() == nullptr || !area_.hasFocus() ? nullptr : child(rows()->selectedRow() - 1);
    }

private:
    const RowSource* rows() const { return area_.host().rows(); }

    ClientArea& area_;
    mutable std::map<int, QAccessible::Id> made_; // by index; one for each row that was asked for
};

QAccessibleInterface* accessibleOf(const QString& /*className*/, QObject* object) {
    auto* const area = dynamic_cast<ClientArea*>(object);
    return area == nullptr || area->host().rows() == nullptr ? nullptr : new AccessibleRows(*area);
}

} // namespace

void WindowHost::setRows(const RowSource& rows) {
    rows_ = &rows;
    QAccessible::installFactory(accessibleOf); // a second time has no effect
}

void WindowHost::rowSelected() {
    QAccessibleEvent event(client_, QAccessible::Focus);
    event.setChild(rows_->selectedRow() - 1);
    QAccessible::updateAccessibility(&event);
}
