#include "platform/window/msgbox.h"

#include <QApplication>
#include <QMessageBox>
#include <QScreen>
#include <cstddef>
#include <utility>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/internal/modal.h"
#include "platform/window/testaccess.h"

Answers answers;

namespace {

const std::pair<std::uint32_t, QMessageBox::StandardButtons> types[] = {
    {MB_OKCANCEL, QMessageBox::Ok | QMessageBox::Cancel},
    {MB_YESNOCANCEL, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel},
    {MB_YESNO, QMessageBox::Yes | QMessageBox::No}};
constexpr std::pair<std::uint32_t, QMessageBox::Icon> icons[] = {
    {MB_ICONHAND, QMessageBox::Critical},
    {MB_ICONEXCLAMATION, QMessageBox::Warning},
    {MB_ICONINFORMATION, QMessageBox::Information}};
constexpr std::pair<int, int> buttonAnswers[] = {
    {QMessageBox::Ok, IDOK}, {QMessageBox::Yes, IDYES}, {QMessageBox::No, IDNO}};

// What stands beside the key in a table of pairs.
template <class Key, class Value, std::size_t N>
Value lookUp(const std::pair<Key, Value> (&table)[N], Key key, Value otherwise) {
    for (const auto& [known, value] : table)
        if (known == key)
            return value;
    return otherwise;
}

} // namespace

int MessageBoxA(CWnd* owner, const char* text, const char* title, std::uint32_t flags) {
    if (answers.messageBox)
        return answers.messageBox(text, title, flags);
    discardInput();
    const ModalScope modal;
    const bool waiting = QApplication::overrideCursor() != nullptr;
    SetCursor(IDC_ARROW); // a question waits for the person, not the person for it
    const QMessageBox::StandardButtons buttons =
        lookUp<std::uint32_t, QMessageBox::StandardButtons>(types, flags & MB_TYPEMASK, QMessageBox::Ok);
    QMessageBox box(lookUp(icons, flags & MB_ICONMASK, QMessageBox::NoIcon), titleOf(title), {}, buttons,
                    owner == nullptr ? nullptr : owner->host());
    box.setTextFormat(Qt::PlainText);
    box.setText(unicodeOf(text));
    box.setWindowModality(Qt::ApplicationModal);
    box.setDefaultButton(buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok);
    const int answer = lookUp(buttonAnswers, box.exec(), int{IDCANCEL});
    SetCursor(waiting ? IDC_WAIT : IDC_ARROW);
    return answer;
}

void MessageBeep() {
    if (answers.beep)
        answers.beep();
    else
        QApplication::beep();
}

void SetCursor(CursorNumber cursor) {
    while (QApplication::overrideCursor() != nullptr)
        QApplication::restoreOverrideCursor();
    if (cursor == IDC_WAIT)
        QApplication::setOverrideCursor(Qt::WaitCursor);
}

int GetKeyState(VirtualKey /*only Shift*/) {
    return QGuiApplication::queryKeyboardModifiers() & Qt::ShiftModifier ? -1 : 0;
}

int GetSystemMetrics(SystemMetric /*only the width*/) {
    const QRect all = QGuiApplication::primaryScreen()->virtualGeometry();
    return all.left() + all.width();
}
