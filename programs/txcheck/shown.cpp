#include "shown.h"

#include "platform/system/utf8.h"
#include "platform/system/windows1252.h"

std::string shown(std::string_view bytes) {
    if (isUtf8(bytes))
        return std::string(bytes);
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        appendUtf8(text, number >= 0x80 && number < 0xA0 ? windows1252Specials[number - 0x80] : number);
    }
    return text;
}

std::string hex(std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        text += {digits[number >> 4], digits[number & 15]};
    }
    return text;
}
