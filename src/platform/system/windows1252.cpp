#include "platform/system/windows1252.h"

#include <algorithm>
#include <array>

#include "platform/system/utf8.h"

namespace {

// From 0x80 to 0x9F.
constexpr std::array<char16_t, 32> specials = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

bool isSpecial(unsigned number) {
    return number >= 0x80 && number < 0xA0;
}

} // namespace

std::string utf8FromWindows1252(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        appendUtf8(text, isSpecial(number) ? specials[number - 0x80U] : number);
    }
    return text;
}

char windows1252Of(char16_t character) {
    if (character <= 0xFF && !isSpecial(character))
        return static_cast<char>(character);
    const auto* const found = std::ranges::find(specials, character);
    return found == specials.end() ? '?' : static_cast<char>(0x80 + (found - specials.begin()));
}
