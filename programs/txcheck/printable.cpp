#include "printable.h"

#include <cstdint>

namespace {

unsigned value(char byte) {
    return static_cast<unsigned char>(byte);
}

bool continues(char byte) {
    return (value(byte) & 0xC0) == 0x80;
}

struct Form {
    unsigned mask, lead, length, least;
};
constexpr Form forms[] = {{0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

// Whether a terminal shows the character of that number as a visible sign.
bool visible(std::uint32_t number) {
    const bool control = number < 0x20 || (number >= 0x7F && number < 0xA0);
    const bool surrogate = number >= 0xD800 && number < 0xE000;
    const bool direction = (number >= 0x200B && number <= 0x200F) || (number >= 0x2028 && number <= 0x202E) ||
                           (number >= 0x2060 && number <= 0x206F) || number == 0xFEFF;
    return !control && !surrogate && !direction && number <= 0x10FFFF;
}

// The length of the visible character at the start of the bytes; 0 if none stands there.
std::size_t characterLength(std::string_view bytes) {
    const unsigned first = value(bytes[0]);
    if (first < 0x80)
        return visible(first) ? 1 : 0;
    for (const Form& form : forms) {
        if ((first & form.mask) != form.lead || bytes.size() < form.length)
            continue;
        std::uint32_t number = first & ~form.mask;
        for (std::size_t i = 1; i < form.length; ++i) {
            if (!continues(bytes[i]))
                return 0;
            number = number << 6 | (value(bytes[i]) & 0x3F);
        }
        return number >= form.least && visible(number) ? form.length : 0;
    }
    return 0;
}

} // namespace

std::string printable(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length > 0)
            text += bytes.substr(0, length);
        else
            text += {'\\', 'x', digits[value(bytes[0]) >> 4], digits[value(bytes[0]) & 15]};
        bytes.remove_prefix(length > 0 ? length : 1);
    }
    return text;
}

std::size_t columns(std::string_view text) {
    std::size_t count = 0;
    for (const char byte : text)
        count += continues(byte) ? 0U : 1U;
    return count;
}

std::size_t bytesOf(std::string_view text, std::size_t columnCount) {
    std::size_t bytes = 0;
    for (; bytes < text.size(); ++bytes)
        if (!continues(text[bytes]) && columnCount-- == 0)
            break;
    return bytes;
}

std::string shortened(std::string text, std::size_t columnCount) {
    if (columns(text) > columnCount) {
        text.resize(bytesOf(text, columnCount - 3));
        text += "...";
    }
    return text;
}
