#include "platform/window/internal/bytefield.h"

#include <algorithm>

ByteField::ByteField(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textEdited, this, [this] { keepWithinLimit(); });
}

void ByteField::setBytes(std::string_view bytes) {
    encoding_ = encodingOf(bytes);
    before_ = unicodeOf(bytes);
    setText(before_);
}

std::string ByteField::bytes() const {
    return bytesOf(text(), encoding_).toStdString();
}

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
