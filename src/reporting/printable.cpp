#include "reporting/printable.h"

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <iterator>

#include "platform/system/utf8.h"

namespace {

struct Range {
    std::uint32_t first;
    std::uint32_t last;
};
// What a terminal shows as nothing, or by moving what stands beside it: controls, what Unicode has to be
// ignored in a picture (joiners, marks of direction, fillers, letters of tags), and marks between lines.
constexpr Range unseen[] = {{0, 0x1F},          {0x7F, 0x9F},      {0xAD, 0xAD},     {0x34F, 0x34F},
                            {0x61C, 0x61C},     {0x115F, 0x1160},  {0x17B4, 0x17B5}, {0x180B, 0x180F},
                            {0x200B, 0x200F},   {0x2028, 0x202E},  {0x2060, 0x206F}, {0x3164, 0x3164},
                            {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},  {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFFB},
                            {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF}};

constexpr PlainText isPlain("");

// Whether a terminal shows the character of that number as a visible sign.
bool visible(std::uint32_t number) {
    return std::none_of(std::begin(unseen), std::end(unseen), [number](const Range& range) {
        return number >= range.first && number <= range.last;
    });
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
    std::string text;
    addPrintable(text, bytes);
    return text;
}

void addPrintable(std::string& text, std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    if (isPlain(bytes)) {
        text += bytes;
        return;
    }
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
}

std::size_t columns(std::string_view text) {
    std::size_t count = 0;
    if (isPlain(text))
        return text.size();
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
