#include "platform/window/internal/bytefield.h"

#include <algorithm>

ByteField::ByteField(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textEdited, this, [this] { keepWithinLimit(); });
}

void ByteField::setBytes(std::string_view bytes) {
    encoding_ = encodingOf(bytes);
    setText(unicodeOf(bytes));
    lengthBefore_ = static_cast<qsizetype>(bytes.size());
}

std::string ByteField::bytes() const {
    return bytesOf(text(), encoding_).toStdString();
}

void ByteField::keepWithinLimit() {
    // What was put in stands before the cursor: characters go from there until the rest fits. One that the
    // encoding lacks shows as what it will be stored as.
    QString kept =
        encoding_ == TextEncoding::utf8 ? text() : unicodeOf(bytesOf(text(), encoding_).toStdString());
    qsizetype cursor = std::min<qsizetype>(cursorPosition(), kept.size());
    const qsizetype most = std::max(limit_, lengthBefore_);
    while (cursor > 0 && bytesOf(kept, encoding_).size() > most) {
        const qsizetype units = cursor > 1 && kept.at(cursor - 1).isLowSurrogate() ? 2 : 1;
        cursor -= units;
        kept.remove(cursor, units);
    }
    if (kept != text()) {
        setText(kept);
        setCursorPosition(static_cast<int>(cursor));
    }
    lengthBefore_ = bytesOf(kept, encoding_).size();
}
