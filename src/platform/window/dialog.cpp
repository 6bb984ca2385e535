#include "platform/window/dialog.h"

#include <QDialog>
#include <QEventLoop>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "platform/system/messagebox.h"
#include "platform/window/internal/conversion.h"
#include "platform/window/internal/host.h"
#include "platform/window/internal/modal.h"
#include "platform/window/resources.h"
#include "platform/window/testaccess.h"

// An edit field whose text is bytes: it keeps the encoding of the text it was given and limits what is typed
// by bytes. What is pasted ends at its first line break; a text that was set keeps its own.
class ByteField : public QLineEdit {
public:
    explicit ByteField(QWidget* parent) : QLineEdit(parent) {
        connect(this, &QLineEdit::textEdited, this, [this] { keepWithinLimit(); });
    }

    void setBytes(std::string_view bytes) {
        encoding_ = encodingOf(bytes);
        before_ = unicodeOf(bytes);
        setText(before_);
    }
    std::string bytes() const { return bytesOf(text(), encoding_).toStdString(); }
    // What is typed or pasted beyond it is dropped; a longer text that was set can only be made shorter.
    void setByteLimit(int limit) { limit_ = limit; }

private:
    void keepWithinLimit();
    void cutAtLineBreak(QString& edited, qsizetype& cursor) const;

    TextEncoding encoding_ = TextEncoding::utf8;
    qsizetype limit_ = 32767;
    QString before_; // the text before the present edit
};

// What was put in begins where the text differs from that before, and ends at the cursor.
void ByteField::cutAtLineBreak(QString& edited, qsizetype& cursor) const {
    const auto* const begin =
        std::mismatch(edited.cbegin(), edited.cbegin() + cursor, before_.cbegin(), before_.cend()).first;
    const auto* const end = edited.cbegin() + cursor;
    const QStringView breaks = u"\n\r\u2028\u2029";
    const auto* const lineBreak = std::find_first_of(begin, end, breaks.cbegin(), breaks.cend());
    cursor = lineBreak - edited.cbegin();
    edited.remove(cursor, end - lineBreak);
}

void ByteField::keepWithinLimit() {
    QString kept = text();
    qsizetype cursor = cursorPosition();
    cutAtLineBreak(kept, cursor);
    // A character that the encoding lacks shows as what it will be stored as.
    if (encoding_ == TextEncoding::windows1252)
        kept = unicodeOf(bytesOf(kept, encoding_).toStdString(), encoding_);
    cursor = std::min(cursor, kept.size());
    // Characters go from before the cursor until the rest fits.
    const qsizetype most = std::max(limit_, bytesOf(before_, encoding_).size());
    while (cursor > 0 && bytesOf(kept, encoding_).size() > most) {
        const qsizetype units = cursor > 1 && kept.at(cursor - 1).isLowSurrogate() ? 2 : 1;
        cursor -= units;
        kept.remove(cursor, units);
    }
    if (kept != text()) {
        setText(kept);
        setCursorPosition(static_cast<int>(cursor));
    }
    before_ = kept;
}

struct DialogWidgets {
    explicit DialogWidgets(const CWnd& window)
        : owner(window.host() == nullptr ? nullptr : dynamic_cast<WindowHost*>(window.host()->window())),
          dialog(owner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint) {}

    WindowHost* owner; // the frame; null where there is none
    QDialog dialog;

    QWidget* control(int id) const { return dialog.findChild<QWidget*>(QString::number(id)); }
    ByteField* field(int id) const { return dynamic_cast<ByteField*>(control(id)); }
};

namespace {

QWidget* makeControl(const DialogControl& row, CDialog& dialog, QDialog& window) {
    switch (row.kind) {
    case ControlKind::edit:
        return new ByteField(&window);
    case ControlKind::label: {
        auto* const label = new QLabel(unicodeOf(row.text), &window);
        label->setTextFormat(Qt::PlainText);
        return label;
    }
    default:
        break;
    }
    auto* const button = new QPushButton(labelOf(row.text), &window);
    button->setDefault(row.kind == ControlKind::defaultButton);
    if (row.id == IDOK)
        QObject::connect(button, &QPushButton::clicked, &window, [&dialog] { dialog.OnOK(); });
    else
        QObject::connect(button, &QPushButton::clicked, &window, &QDialog::reject);
    return button;
}

// Sizes follow the font, as letters of the desktop's font have to fit in.
void build(const DialogResource& resource, CDialog& dialog, QDialog& window) {
    const QFontMetrics metrics(window.font());
    const int across = std::max(metrics.averageCharWidth(), 1);
    const int down = std::max(metrics.height(), 1);
    const auto pixels = [](int units, int base, int unitsOfBase) {
        return (units * base + unitsOfBase / 2) / unitsOfBase;
    };
    window.setFixedSize(pixels(resource.width, across, 4), pixels(resource.height, down, 8));
    QWidget* before = nullptr;
    for (const DialogControl& row : resource.controls) {
        QWidget* const control = makeControl(row, dialog, window);
        control->setObjectName(QString::number(row.id));
        const int top = pixels(row.y, down, 8);
        const int height = std::max(pixels(row.height, down, 8), row.kind == ControlKind::label ? down : 0);
        control->setGeometry(pixels(row.x, across, 4), top, pixels(row.width, across, 4), height);
        if (before != nullptr)
            QWidget::setTabOrder(before, control);
        else
            control->setFocus();
        before = control;
    }
}

QDialog* latest = nullptr; // of those that are open

void allowAnswer(QDialog* dialog, bool allowed) {
    if (dialog == nullptr)
        return;
    if (auto* const button = dialog->findChild<QWidget*>(QString::number(IDOK)))
        button->setEnabled(allowed);
}

// Shows the dialog until it ends, by itself, with its parent or with the program. The one that was open
// before, of another window, goes on only after this one: an answer given to it meanwhile would have no
// effect yet.
void run(QDialog& window, WindowHost& parent) {
    const ModalScope modal;
    const QPointer<WindowHost> owner(&parent);
    QDialog* const before = std::exchange(latest, &window);
    allowAnswer(before, false);
    QEventLoop loop;
    QObject::connect(&window, &QDialog::finished, &loop, &QEventLoop::quit);
    owner->setDialog(&window);
    window.show();
    loop.exec();
    latest = before;
    allowAnswer(before, true);
    if (!owner)
        return;
    owner->setDialog(nullptr);
    if (owner->wnd() != nullptr)
        owner->activateWindow();
}

} // namespace

CDialog::CDialog(int resourceNumber, CWnd& parent)
    : resourceNumber_(resourceNumber), widgets_(std::make_unique<DialogWidgets>(parent)) {}

CDialog::~CDialog() = default;

int CDialog::DoModal() {
    const DialogResource* const resource = findDialog(resourceNumber_);
    if (resource == nullptr || widgets_->owner == nullptr)
        return 0;
    build(*resource, *this, widgets_->dialog);
    OnInitDialog();
    for (auto* const field : widgets_->dialog.findChildren<QLineEdit*>())
        field->selectAll();
    if (!answers.dialog)
        run(widgets_->dialog, *widgets_->owner);
    else if (answers.dialog(*this) == IDOK)
        OnOK();
    return widgets_->dialog.result() == QDialog::Accepted ? IDOK : IDCANCEL;
}

void CDialog::SetWindowTextA(const char* title) {
    widgets_->dialog.setWindowTitle(titleOf(title));
}

void CDialog::SetDlgItemTextA(int control, const char* text) {
    if (ByteField* const field = widgets_->field(control))
        field->setBytes(text);
    else if (auto* const label = dynamic_cast<QLabel*>(widgets_->control(control)))
        label->setText(unicodeOf(text));
}

void CDialog::GetDlgItemTextA(int control, char* buffer, std::size_t size) const {
    const ByteField* const field = widgets_->field(control);
    const std::string text = field == nullptr ? std::string() : field->bytes();
    if (size > 0)
        buffer[text.copy(buffer, cutBetweenCharacters(text, size - 1))] = '\0';
}

void CDialog::LimitText(int control, int bytes) {
    if (ByteField* const field = widgets_->field(control))
        field->setByteLimit(bytes);
}

void CDialog::OnOK() {
    widgets_->dialog.accept();
}
