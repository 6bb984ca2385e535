#include "platform/window/internal/conversion.h"

#include <QStringDecoder>
#include <algorithm>

#include "platform/system/utf8.h"
#include "platform/system/windows1252.h"

namespace {

QByteArrayView viewOf(std::string_view bytes) {
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

QString decodeUtf8(std::string_view bytes) {
    // A byte order mark is a character like others.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder(viewOf(bytes));
}

char windows1252Of(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<char>(unit);
    const auto* const found = std::find(windows1252Specials.begin(), windows1252Specials.end(), unit);
    return found == windows1252Specials.end()
               ? '?'
               : static_cast<char>(0x80 + (found - windows1252Specials.begin()));
}

} // namespace

TextEncoding encodingOf(std::string_view bytes) {
    return isUtf8(bytes) ? TextEncoding::utf8 : TextEncoding::windows1252;
}

QString unicodeOf(std::string_view bytes) {
    return unicodeOf(bytes, encodingOf(bytes));
}

QString unicodeOf(std::string_view bytes, TextEncoding encoding) {
    if (encoding == TextEncoding::utf8)
        return decodeUtf8(bytes);
    QString text = QString::fromLatin1(viewOf(bytes));
    for (QChar& letter : text) {
        if (letter >= QChar(0x80) && letter < QChar(0xA0))
            letter = QChar(windows1252Specials[letter.unicode() - 0x80U]);
    }
    return text;
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
