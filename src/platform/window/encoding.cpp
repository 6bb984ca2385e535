#include "platform/window/encoding.h"

#include "platform/window/internal/conversion.h"

std::string inOtherEncoding(std::string_view bytes) {
    const QString text = unicodeOf(bytes);
    const TextEncoding other =
        encodingOf(bytes) == TextEncoding::utf8 ? TextEncoding::windows1252 : TextEncoding::utf8;
    std::string turned = bytesOf(text, other).toStdString();
    return unicodeOf(turned) == text ? turned : std::string(bytes);
}
