#include "platform/window/statusbarctrl.h"

#include <QSizeGrip>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/windowdc.h"

bool CStatusBarCtrl::Create(CWnd& frame) {
    if (!CWnd::Create({GetSysColor(COLOR_BTNFACE), nullptr}, RECT{0, 0, 1, 1}, frame))
        return false;
    auto* const grip = new QSizeGrip(host()->client()); // goes with it
    grip->show();
    return true;
}

void CStatusBarCtrl::SetText(const char* line) {
    if (text == line || host() == nullptr)
        return;
    text = line;
    host()->setAccessibleName(unicodeOf(text));
    host()->setToolTip(hintOf(text));
    InvalidateRect(true);
}

void CStatusBarCtrl::onPaint() {
    CPaintDC context(*this);
    context.SetBkMode(TRANSPARENT);
    context.SetTextColor(GetSysColor(COLOR_BTNTEXT));
    const int room = GetClientRect().right - GetClientRect().bottom - 8; // to the left of the grip
    std::string shown = text;
    for (std::size_t end = text.size(); end > 0 && context.GetTextExtentPoint32A(shown.c_str()).cx > room;) {
        end = cutBetweenCharacters(text, end - 1);
        shown = text.substr(0, end) + "...";
    }
    context.TextOutA(4, 1, shown.c_str());
}

void CStatusBarCtrl::onSize(int /*type*/, int width, int height) {
    if (auto* const grip = host()->client()->findChild<QSizeGrip*>())
        grip->setGeometry(width - height, 0, height, height);
}
