#include "platform/window/framewnd.h"

#include <QIcon>
#include <QScreen>
#include <algorithm>

#include "platform/window/dc.h"
#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/resources.h"

namespace {

QIcon pictureOf(const IconResource& icon) {
    CDC context;
    CBitmap picture;
    picture.CreateCompatibleBitmap(context, IconResource::size, IconResource::size);
    context.SelectObject(&picture);
    context.DrawIcon(0, 0, icon);
    return QPixmap::fromImage(picture.canvas()->image());
}

// On a screen that is smaller than the window, the window is as large as that, with room for the title that
// the desktop will draw.
QRect onScreen(const RECT& wanted, const QRect& available) {
    constexpr int title = 40; // pixels
    const QRect screen = available.adjusted(0, 0, 0, -title);
    QRect place(wanted.left, wanted.top, std::min(wanted.right - wanted.left, screen.width()),
                std::min(wanted.bottom - wanted.top, screen.height()));
    place.moveRight(std::min(place.right(), screen.right()));
    place.moveBottom(std::min(place.bottom(), screen.bottom()));
    return place;
}

} // namespace

bool CFrameWnd::Create(const WindowClass& windowClass, const char* title, const RECT& rectangle,
                       CWnd* parent) {
    if (host_ != nullptr || (parent != nullptr && parent->host_ == nullptr))
        return false;
    WindowHost* const owner = parent == nullptr ? nullptr : parent->host_;
    // Only a dialog stays in front of its owner; the hints give it all that another window has.
    const Qt::WindowFlags flags = owner == nullptr
                                      ? Qt::Window
                                      : Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                            Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint;
    host_ = new WindowHost(*this, windowClass, owner, flags); // goes with the window
    if (windowClass.icon != nullptr)
        host_->setWindowIcon(pictureOf(*windowClass.icon));
    if (const MenuResource* const menu = findMenu(windowClass.menu))
        host_->setMenu(*menu);
    SetWindowTextA(title);
    const QRect place = onScreen(rectangle, host_->screen()->availableGeometry());
    host_->move(place.topLeft());
    host_->resize(place.size());
    started();
    return host_ != nullptr;
}

void CFrameWnd::SetMenuText(std::uint32_t id, const std::string& text) {
    if (host_ == nullptr)
        return;
    for (QAction* entry : host_->findChildren<QAction*>())
        if (entry->data() == id)
            entry->setText('&' + labelOf(text));
}

std::string CFrameWnd::GetWindowPlacement() const {
    return host_ == nullptr ? std::string() : host_->saveGeometry().toStdString();
}

void CFrameWnd::SetWindowPlacement(const std::string& placement) {
    constexpr int smallest = 100; // pixels: nobody would find a smaller window
    if (host_ == nullptr)
        return;
    const QRect before(host_->pos(), host_->size());
    host_->restoreGeometry(QByteArray::fromStdString(placement));
    if (host_->width() < smallest || host_->height() < smallest) {
        host_->move(before.topLeft());
        host_->resize(before.size());
    }
    host_->arrange(); // a window that is not on show gets no event of its new size
}

void CFrameWnd::PostNcDestroy() {
    delete this;
}
