#include "shown.h"

#include <cstdint>

#include "platform/system/utf8.h"

namespace {

// Windows-1252 from 0x80 to 0x9F, a byte without a meaning there as the control character of its number; all
// else is Latin-1.
constexpr std::uint16_t specials[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

std::string shown(std::string_view bytes) {
    if (isUtf8(bytes))
        return std::string(bytes);
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        appendUtf8(text, number >= 0x80 && number < 0xA0 ? specials[number - 0x80] : number);
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
