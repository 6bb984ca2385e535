#include "platform/window/menu.h"

#include <QKeyEvent>
#include <QMenu>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/internal/modal.h"
#include "platform/window/testaccess.h"

namespace {

// A key that chooses doesn't mark: what it would choose has to be gone to first.
class ChoiceMenu : public QMenu {
public:
    using QMenu::QMenu;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool goes =
            event->key() == Qt::Key_Up || event->key() == Qt::Key_Down || event->key() == Qt::Key_Escape;
        if (goes || activeAction() != nullptr)
            QMenu::keyPressEvent(event);
    }
};

std::uint32_t askForItem(const CMenu& items, const QPoint& place, QWidget* parent) {
    if (answers.popupMenu)
        return answers.popupMenu(items);
    const ModalScope modal;
    ChoiceMenu menu(parent);
    for (const CMenu::Item& item : items.items())
        menu.addAction(labelOf(item.text))->setData(item.id);
    const QAction* const chosen = menu.exec(place);
    return chosen == nullptr ? 0 : chosen->data().toUInt();
}

} // namespace

void CMenu::AppendMenuA(std::uint32_t id, const char* text) {
    items_.push_back({id, text});
}

void CMenu::TrackPopupMenu(int x, int y, CWnd& window,
                           const std::function<void(std::uint32_t id)>& chosen) const {
    const QPointer<WindowHost> host(window.host());
    discardInput();
    const std::uint32_t id = host ? askForItem(*this, QPoint(x, y), host) : 0;
    if (id != 0 && host)
        host->post([chosen, id] { chosen(id); });
}
