#include "platform/window/internal/conversion.h"

#include <QStringDecoder>

#include "platform/system/utf8.h"
#include "platform/system/windows1252.h"

TextEncoding encodingOf(std::string_view bytes) {
    return isUtf8(bytes) ? TextEncoding::utf8 : TextEncoding::windows1252;
}

QString unicodeOf(std::string_view bytes) {
    return unicodeOf(bytes, encodingOf(bytes));
}

QString unicodeOf(std::string_view bytes, TextEncoding encoding) {
    if (encoding == TextEncoding::windows1252)
        return unicodeOf(utf8FromWindows1252(bytes), TextEncoding::utf8);
    // A byte order mark is a character like others.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

QByteArray bytesOf(const QString& text, TextEncoding encoding) {
    if (encoding == TextEncoding::utf8)
        return text.toUtf8();
    QByteArray bytes;
    for (const QChar letter : text) {
        if (!letter.isLowSurrogate()) // its first half has become the question mark
            bytes.append(windows1252Of(letter.unicode()));
    }
    return bytes;
}

std::size_t cutBetweenCharacters(std::string_view bytes, std::size_t limit) {
    if (bytes.size() <= limit)
        return bytes.size();
    if (encodingOf(bytes) == TextEncoding::windows1252)
        return limit;
    while (limit > 0 && (static_cast<unsigned char>(bytes[limit]) & 0xC0) == 0x80)
        --limit;
    return limit;
}

QString labelOf(std::string_view bytes) {
    return unicodeOf(bytes).replace('&', "&&");
}

QString titleOf(std::string_view bytes) {
    return unicodeOf(bytes).replace("[*]", "[*][*]");
}

QString hintOf(std::string_view bytes) {
    return bytes.empty() ? QString() : "<p style='white-space:nowrap'>" + unicodeOf(bytes).toHtmlEscaped();
}
