#include "platform/window/statusbarctrl.h"

#include <QSizeGrip>

#include "platform/window/internal/host.h"

bool CStatusBarCtrl::Create(CWnd& frame) {
    if (!CWnd::Create({GetSysColor(COLOR_BTNFACE), nullptr}, RECT{0, 0, 1, 1}, frame))
        return false;
    auto* const grip = new QSizeGrip(host()->client()); // goes with it
    grip->show();
    return true;
}

void CStatusBarCtrl::onSize(int /*type*/, int width, int height) {
    if (auto* const grip = host()->client()->findChild<QSizeGrip*>())
        grip->setGeometry(width - height, 0, height, height);
}
