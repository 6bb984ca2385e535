#include "platform/window/wnd.h"

#include <algorithm>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/winapp.h"
#include "platform/window/windowdc.h"

WindowClass AfxRegisterWndClass(const CBrush* background, const IconResource* icon, int menu) {
    return {background->colour, icon, menu};
}

CWnd::CWnd() = default;

CWnd::~CWnd() {
    giveUpWindow();
}

bool CWnd::Create(const WindowClass& windowClass, const RECT& rectangle, CWnd& parent) {
    if (host_ != nullptr || parent.host_ == nullptr)
        return false;
    host_ = new WindowHost(*this, windowClass, parent.host_->client(), Qt::Widget); // goes with the window
    host_->setGeometry(rectangle.left, rectangle.top, std::max(rectangle.right - rectangle.left, 0),
                       std::max(rectangle.bottom - rectangle.top, 0));
    started();
    ShowWindow();
    return host_ != nullptr;
}

void CWnd::started() {
    host_->arrange();
    onCreate();
    if (host_ != nullptr)
        host_->tellSize();
}

bool CWnd::giveUpWindow() {
    if (host_ == nullptr)
        return false;
    host_->detach();
    host_ = nullptr;
    endApplicationWith(*this);
    return true;
}

void CWnd::DestroyWindow() {
    if (host_ != nullptr)
        onDestroy();
    if (giveUpWindow())
        PostNcDestroy();
}

void CWnd::ShowWindow() {
    if (host_ != nullptr)
        host_->show();
}

void CWnd::SetActiveWindow() {
    if (host_ == nullptr)
        return;
    host_->setWindowState(host_->windowState() & ~Qt::WindowMinimized);
    host_->raise();
    host_->activateWindow();
}

void CWnd::SetWindowPos(int x, int y, int width, int height) {
    if (host_ == nullptr)
        return;
    WindowHost* const host = host_;
    host->setGeometry(x, y, std::max(width, 0), std::max(height, 0));
    host->raise();
    host->show();
    host->arrange(); // a window that is not on show gets no event of its new size
    host->tellSize();
}

void CWnd::SetWindowTextA(const char* text) {
    if (host_ != nullptr)
        host_->setWindowTitle(titleOf(text));
}

RECT CWnd::GetClientRect() const {
    if (host_ == nullptr)
        return {};
    return {0, 0, host_->clientSize().width(), host_->clientSize().height()};
}

POINT CWnd::ClientToScreen(POINT point) const {
    if (host_ == nullptr)
        return point;
    const QPoint place = host_->client()->mapToGlobal(QPoint(point.x, point.y));
    return {place.x(), place.y()};
}

void CWnd::InvalidateRect(bool erase) {
    if (host_ != nullptr)
        host_->invalidate(QRect(QPoint(0, 0), host_->clientSize()), erase);
}

void CWnd::UpdateWindow() {
    if (host_ != nullptr)
        host_->paintAtOnce();
}

void CWnd::ScrollWindow(int dx, int dy) {
    if (host_ != nullptr && (dx != 0 || dy != 0))
        host_->scroll(dx, dy);
}

void CWnd::ShowScrollBar(ScrollBarKind bar) {
    if (host_ != nullptr)
        host_->showBar(bar);
}

bool CWnd::GetScrollInfo(ScrollBarKind bar, SCROLLINFO& info) const {
    info = host_ == nullptr ? SCROLLINFO() : host_->range(bar);
    return host_ != nullptr && host_->hasBar(bar);
}

void CWnd::SetScrollInfo(ScrollBarKind bar, const SCROLLINFO& info) {
    if (host_ != nullptr)
        host_->setRange(bar, info);
}

int CWnd::GetScrollPos(ScrollBarKind bar) const {
    return host_ == nullptr ? 0 : host_->range(bar).nPos;
}

void CWnd::SetScrollPos(ScrollBarKind bar, int position) {
    if (host_ == nullptr)
        return;
    SCROLLINFO info = host_->range(bar);
    info.nPos = position;
    host_->setRange(bar, info);
}

void CWnd::SetTimer(std::uint32_t id, unsigned milliseconds) {
    if (host_ != nullptr)
        host_->timers[id].start(static_cast<int>(milliseconds), host_->client());
}

void CWnd::KillTimer(std::uint32_t id) {
    if (host_ != nullptr)
        host_->timers.erase(id);
}

void CWnd::SetCapture() {
    if (host_ != nullptr)
        host_->takeCapture();
}

void CWnd::ReleaseCapture() {
    if (host_ != nullptr)
        host_->endCapture();
}

void CWnd::SetTabStop() {
    if (host_ != nullptr)
        host_->setTabStop();
}

void CWnd::SetRows(const RowSource& rows) {
    if (host_ != nullptr)
        host_->setRows(rows);
}

void CWnd::RowSelected() {
    if (host_ != nullptr)
        host_->rowSelected();
}

void CWnd::onPaint() {
    CPaintDC context(*this);
}

void CWnd::onClose() {
    DestroyWindow();
}
