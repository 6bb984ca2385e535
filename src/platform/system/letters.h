// Comparing that ignores the case of the ASCII letters and takes every other byte as it stands, unsigned: the
// one order of keys, type names and file names.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

// The byte with an ASCII capital turned into its small letter.
constexpr unsigned char smallLetter(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 'A' && value <= 'Z' ? static_cast<unsigned char>(value + ('a' - 'A')) : value;
}

// Below 0, 0 or above 0 as a stands before, with or behind b. A text that begins another is the smaller.
inline int compareIgnoringCase(std::string_view a, std::string_view b) {
    constexpr std::size_t step = 8;
    const std::size_t common = a.size() < b.size() ? a.size() : b.size();
    std::size_t i = 0;
    while (i + step <= common && std::memcmp(a.data() + i, b.data() + i, step) == 0)
        i += step;
    for (; i < common; ++i) {
        const int difference = smallLetter(a[i]) - smallLetter(b[i]);
        if (difference != 0)
            return difference;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

inline bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && compareIgnoringCase(a, b) == 0;
}

// The order of containers whose texts are the same in capitals and small letters.
struct BeforeIgnoringCase {
    bool operator()(std::string_view a, std::string_view b) const { return compareIgnoringCase(a, b) < 0; }
};
