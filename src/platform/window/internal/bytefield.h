// An edit field whose text is bytes: it keeps the encoding of the text it was given and limits what is typed
// by bytes. What is pasted ends at its first line break; a text that was set keeps its own.
#pragma once

#include <QLineEdit>
#include <string>
#include <string_view>

#include "platform/window/internal/conversion.h"

class ByteField : public QLineEdit {
public:
    explicit ByteField(QWidget* parent);

    void setBytes(std::string_view bytes);
    std::string bytes() const;
    // What is typed or pasted beyond it is dropped; a longer text that was set can only be made shorter.
    void setByteLimit(int limit) { limit_ = limit; }

private:
    void keepWithinLimit();
    void cutAtLineBreak(QString& edited, qsizetype& cursor) const;

    TextEncoding encoding_ = TextEncoding::utf8;
    qsizetype limit_ = 32767;
    QString before_; // the text before the present edit
};
