#include "platform/window/menu.h"

#include <QMenu>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/internal/modal.h"
#include "platform/window/testaccess.h"

namespace {

std::uint32_t askForItem(const CMenu& items, const QPoint& place, QWidget* parent) {
    if (answers.popupMenu)
        return answers.popupMenu(items);
    const ModalScope modal;
    QMenu menu(parent);
    for (const CMenu::Item& item : items.items())
        menu.addAction(labelOf(item.text))->setData(item.id);
    const QAction* const chosen = menu.exec(place);
    return chosen == nullptr ? 0 : chosen->data().toUInt();
}

} // namespace

void CMenu::AppendMenuA(std::uint32_t id, const char* text) {
    items_.push_back({id, text});
}

void CMenu::TrackPopupMenu(int x, int y, CWnd& commandWindow) const {
    const QPointer<WindowHost> host(commandWindow.host());
    if (!host)
        return;
    const std::uint32_t id = askForItem(*this, QPoint(x, y), host);
    if (id != 0 && host)
        host->postCommand(id);
}
