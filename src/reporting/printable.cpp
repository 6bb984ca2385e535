#include "reporting/printable.h"

#include <clocale>
#include <cstdint>
#include <cwchar>

#include "platform/system/utf8.h"

namespace {

// Whether a terminal shows the character of that number as a visible sign.
bool visible(std::uint32_t number) {
    const bool control = number < 0x20 || (number >= 0x7F && number < 0xA0);
    const bool direction = (number >= 0x200B && number <= 0x200F) || (number >= 0x2028 && number <= 0x202E) ||
                           (number >= 0x2060 && number <= 0x206F) || number == 0xFEFF;
    return !control && !direction;
}

// The C library knows the widths of all characters, but tells them for those of the locale alone: whatever
// that of the person is, it is asked in one that has them all.
std::size_t width(std::uint32_t number) {
    if (number < 0x80)
        return 1;
    static const locale_t all = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (all == nullptr)
        return 1;
    const locale_t before = uselocale(all);
    const int found = wcwidth(static_cast<wchar_t>(number));
    uselocale(before);
    return found < 0 ? 1 : static_cast<std::size_t>(found);
}

} // namespace

std::string printable(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    while (!bytes.empty()) {
        const Utf8Character character = utf8Character(bytes);
        const bool shown = character.length > 0 && visible(character.number);
        const auto byte = static_cast<unsigned char>(bytes[0]);
        if (shown)
            text += bytes.substr(0, character.length);
        else
            text += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        bytes.remove_prefix(shown ? character.length : 1);
    }
    return text;
}

std::size_t columns(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Character character = utf8Character(text.substr(at));
        count += width(character.number);
        at += character.length;
    }
    return count;
}

std::size_t bytesOf(std::string_view text, std::size_t columnCount) {
    std::size_t bytes = 0;
    for (std::size_t used = 0; bytes < text.size();) {
        const Utf8Character character = utf8Character(text.substr(bytes));
        used += width(character.number);
        if (used > columnCount)
            break;
        bytes += character.length;
    }
    return bytes;
}

std::string shortened(std::string text, std::size_t columnCount) {
    if (columns(text) > columnCount) {
        text.resize(bytesOf(text, columnCount - 3));
        text += "...";
    }
    return text;
}
