// Keys, wheel and the capture of the mouse.
#include <QApplication>
#include <QMenuBar>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "platform/window/internal/host.h"

namespace {

constexpr int lineDelta = 40; // a notch of the wheel is 120 and scrolls three lines
constexpr std::uint32_t heldBefore = 0x4000;

QPointer<WindowHost> captured;

struct KeyCode {
    int qt;
    std::uint32_t code;
};

constexpr KeyCode keyCodes[] = {
    {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},      {Qt::Key_Return, 13},   {Qt::Key_Enter, 13},
    {Qt::Key_Shift, 16},    {Qt::Key_Control, 17}, {Qt::Key_Pause, 19},    {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},   {Qt::Key_PageUp, 33},  {Qt::Key_PageDown, 34}, {Qt::Key_End, 35},
    {Qt::Key_Home, 36},     {Qt::Key_Left, 37},    {Qt::Key_Up, 38},       {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},     {Qt::Key_Insert, 45},  {Qt::Key_Delete, 46},
};

// 0 for a key that has no code of its own.
std::uint32_t keyCodeOf(int key) {
    const bool sameNumber = key == Qt::Key_Space || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
                            (key >= Qt::Key_A && key <= Qt::Key_Z);
    if (sameNumber)
        return static_cast<std::uint32_t>(key);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return static_cast<std::uint32_t>(112 + key - Qt::Key_F1);
    const auto* const found = std::find_if(std::begin(keyCodes), std::end(keyCodes),
                                           [key](const KeyCode& row) { return row.qt == key; });
    return found == std::end(keyCodes) ? 0 : found->code;
}

} // namespace

void WindowHost::takeCapture() {
    if (captured == this)
        return;
    if (captured != nullptr)
        captured->endCapture();
    captured = this;
}

void WindowHost::endCapture() {
    if (captured != this)
        return;
    captured = nullptr;
    if (wnd_ != nullptr)
        wnd_->onCaptureChanged();
}

bool WindowHost::hasCapture() const {
    return captured == this;
}

void WindowHost::wheel(const QWheelEvent& event) {
    sendLines(SB_VERT, event.angleDelta().y());
    sendLines(SB_HORZ, event.angleDelta().x());
}

void WindowHost::sendLines(ScrollBarKind kind, int delta) {
    int& rest = wheelRest_[kind];
    if (delta == 0 || bars_[kind].widget == nullptr || bars_[kind].range.limit() == 0)
        return;
    if ((rest < 0) != (delta < 0)) // turned back: the way begun in the other direction is given up
        rest = 0;
    rest += delta;
    const int lines = rest / lineDelta;
    rest -= lines * lineDelta;
    for (int i = 0; i < std::abs(lines); ++i)
        sendScroll(kind, lines > 0 ? SB_LINEUP : SB_LINEDOWN, 0);
}

void WindowHost::closeEvent(QCloseEvent* event) {
    event->ignore(); // closing is the window's own work
    if (QWidget* const menu = QApplication::activePopupWidget())
        menu->close(); // an operation of this window may wait for it
    else if (!dialog_ && wnd_ != nullptr)
        wnd_->onClose();
}

void WindowHost::setTabStop() {
    auto& frame = dynamic_cast<WindowHost&>(*window());
    client_->setFocusPolicy(Qt::StrongFocus);
    if (frame.lastTabStop_)
        QWidget::setTabOrder(frame.lastTabStop_, client_);
    else
        client_->setFocus();
    frame.lastTabStop_ = client_;
}

void WindowHost::keyPressEvent(QKeyEvent* event) {
    if (!isWindow())
        event->ignore();                                 // the frame's too
    if (dialog_ || event->modifiers() & Qt::AltModifier) // these are the menu's keys
        return;
    if (event->key() == Qt::Key_F10 && menu_ != nullptr) {
        menu_->setFocus(Qt::MenuBarFocusReason);
        menu_->setActiveAction(menu_->actions().value(0));
        return;
    }
    const std::uint32_t flags = event->isAutoRepeat() ? heldBefore : 0;
    if (const std::uint32_t code = keyCodeOf(event->key()); code != 0 && wnd_ != nullptr)
        wnd_->onKeyDown(code, 1, flags);
    for (const char32_t letter : event->text().toUcs4()) {
        if (wnd_ != nullptr)
            wnd_->onChar(letter, 1, flags);
    }
}
