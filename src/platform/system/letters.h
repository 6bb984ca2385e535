// Comparing that ignores the case of the ASCII letters and takes every other byte as it stands, unsigned: the
// order of keys and type names, and that of file names, in which small letters count as capitals.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// The byte with an ASCII capital turned into its small letter, and the other way round.
constexpr auto smallLetters = [] {
    std::array<unsigned char, 256> table = {};
    for (unsigned i = 0; i < 256; ++i)
        table[i] = static_cast<unsigned char>(i >= 'A' && i <= 'Z' ? i + ('a' - 'A') : i);
    return table;
}();
constexpr unsigned char smallLetter(char byte) {
    return smallLetters[static_cast<unsigned char>(byte)];
}
constexpr unsigned char capitalLetter(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 'a' && value <= 'z' ? static_cast<unsigned char>(value - ('a' - 'A')) : value;
}

// Below 0, 0 or above 0 as a stands before, with or behind b. A text that begins another is the smaller.
// Inline, so that the walk down the key index has it inside of its loop.
template <unsigned char (*letter)(char)> inline int compareLetters(std::string_view a, std::string_view b) {
    constexpr std::size_t step = sizeof(std::uint64_t);
    const std::size_t common = std::min(a.size(), b.size());
    const auto difference = [&](std::size_t at) {
        std::uint64_t pieces[2];
        std::memcpy(&pieces[0], a.data() + at, step);
        std::memcpy(&pieces[1], b.data() + at, step);
        return pieces[0] ^ pieces[1];
    };
    std::size_t i = 0;
    if (common >= step && std::endian::native == std::endian::little) { // the first byte that differs
        while (difference(i) == 0 && i < common - step)
            i = std::min(i + step, common - step);
        i += static_cast<std::size_t>(std::countr_zero(difference(i))) / 8;
    }
    for (; i < common; ++i)
        if (const int order = letter(a[i]) - letter(b[i]); order != 0)
            return order;
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

inline int compareIgnoringCase(std::string_view a, std::string_view b) {
    return compareLetters<smallLetter>(a, b);
}

inline bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && compareIgnoringCase(a, b) == 0;
}

// The order of containers whose texts are the same in capitals and small letters.
struct BeforeIgnoringCase {
    bool operator()(std::string_view a, std::string_view b) const { return compareIgnoringCase(a, b) < 0; }
};

// The order of file names; those that are equal ignoring case by their plain bytes, or not told apart.
inline bool beforeInCapitals(std::string_view a, std::string_view b) {
    return compareLetters<capitalLetter>(a, b) < 0;
}

inline bool beforeInOrder(std::string_view a, std::string_view b) {
    const int order = compareLetters<capitalLetter>(a, b);
    return order < 0 || (order == 0 && a < b);
}

// The entry of that very name, else the first that equals it ignoring case, else none. The names are in
// order.
inline const std::string* findName(const std::vector<std::string>& names, std::string_view name) {
    const auto same = std::lower_bound(names.begin(), names.end(), name, beforeInOrder);
    if (same != names.end() && *same == name)
        return &*same;
    const auto like = std::lower_bound(names.begin(), names.end(), name, beforeInCapitals);
    return like != names.end() && equalIgnoringCase(*like, name) ? &*like : nullptr;
}
