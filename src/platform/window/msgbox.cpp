#include "platform/window/msgbox.h"

#include <QApplication>
#include <QMessageBox>
#include <QScreen>

#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/internal/modal.h"
#include "platform/window/internal/strayinput.h"
#include "platform/window/testaccess.h"

Answers answers;

namespace {

QMessageBox::StandardButtons buttonsOf(std::uint32_t flags) {
    switch (flags & MB_TYPEMASK) {
    case MB_OKCANCEL:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case MB_YESNOCANCEL:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MB_YESNO:
        return QMessageBox::Yes | QMessageBox::No;
    default:
        return QMessageBox::Ok;
    }
}

QMessageBox::Icon iconOf(std::uint32_t flags) {
    switch (flags & MB_ICONMASK) {
    case MB_ICONHAND:
        return QMessageBox::Critical;
    case MB_ICONEXCLAMATION:
        return QMessageBox::Warning;
    case MB_ICONINFORMATION:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

int answerOf(int button) {
    switch (button) {
    case QMessageBox::Ok:
        return IDOK;
    case QMessageBox::Yes:
        return IDYES;
    case QMessageBox::No:
        return IDNO;
    default:
        return IDCANCEL;
    }
}

} // namespace

int MessageBoxA(CWnd* owner, const char* text, const char* title, std::uint32_t flags) {
    if (answers.messageBox)
        return answers.messageBox(text, title, flags);
    discardInput();
    const ModalScope modal;
    const bool waiting = QApplication::overrideCursor() != nullptr;
    SetCursor(IDC_ARROW); // a question waits for the person, not the person for it
    const QMessageBox::StandardButtons buttons = buttonsOf(flags);
    QMessageBox box(iconOf(flags), titleOf(title), {}, buttons, owner == nullptr ? nullptr : owner->host());
    box.setTextFormat(Qt::PlainText);
    box.setText(unicodeOf(text));
    box.setWindowModality(Qt::ApplicationModal);
    box.setDefaultButton(buttons & QMessageBox::Yes ? QMessageBox::Yes : QMessageBox::Ok);
    const int answer = answerOf(box.exec());
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
