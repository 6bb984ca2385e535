#include "undo/fields.h"

#include <algorithm>

#include "undo/content.h"

namespace {

// Whether bytes begin as one and end as the other, wherever the one stops.
bool isMixOf(std::string_view bytes, std::string_view first, std::string_view last) {
    const auto same = [&](std::string_view other) {
        return std::mismatch(bytes.begin(), bytes.end(), other.begin()).first - bytes.begin();
    };
    const auto tail = std::mismatch(bytes.rbegin(), bytes.rend(), last.rbegin()).first - bytes.rbegin();
    return same(first) + tail >= static_cast<std::ptrdiff_t>(bytes.size());
}

} // namespace

Standing standingOf(std::string_view content, const FieldChange& field) {
    const std::size_t width = std::max(field.before.length, field.after.length);
    const auto filled = [width](std::string bytes) {
        bytes.resize(width);
        return bytes;
    };
    if (static_cast<std::uint64_t>(field.offset) > content.size())
        return Standing::foreign;
    const std::string_view found = bytesAt(content, field.offset, width);
    if (found == field.after.whole())
        return Standing::after;
    if (found == field.before.whole())
        return Standing::before;
    const std::string bytes = filled(std::string(found));
    const std::string before = filled(field.before.whole());
    const std::string after = filled(field.after.whole());
    return isMixOf(bytes, after, before) || isMixOf(bytes, before, after) ? Standing::torn
                                                                          : Standing::foreign;
}

std::string keyIn(std::string_view field) {
    constexpr std::size_t textStart = 8;
    Decoder from(field);
    const auto length = from.number<std::uint32_t>();
    const std::string_view text = field.substr(std::min(textStart, field.size()), length);
    return std::string(text.substr(0, text.find('\0')));
}
