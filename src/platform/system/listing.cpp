#include "platform/system/listing.h"

#include <algorithm>

#include "platform/system/letters.h"

namespace {

unsigned char capitalLetter(char byte) {
    const unsigned char small = smallLetter(byte);
    return small >= 'a' && small <= 'z' ? static_cast<unsigned char>(small - ('a' - 'A')) : small;
}

// Below 0, 0 or above 0 in the order of the capitals; 0 for names that equal each other ignoring case.
int compareAsCapitals(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = capitalLetter(a[i]) - capitalLetter(b[i]);
        if (difference != 0)
            return difference;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

} // namespace

bool beforeIgnoringCase(std::string_view a, std::string_view b) {
    return compareAsCapitals(a, b) < 0;
}

bool beforeInOrder(const std::string& a, const std::string& b) {
    const int order = compareAsCapitals(a, b);
    return order < 0 || (order == 0 && a < b);
}

const std::string* findName(const std::vector<std::string>& names, std::string_view name) {
    const std::string wanted(name);
    const auto same = std::lower_bound(names.begin(), names.end(), wanted, beforeInOrder);
    if (same != names.end() && *same == wanted)
        return &*same;
    const auto like = std::lower_bound(names.begin(), names.end(), name, beforeIgnoringCase);
    return like != names.end() && equalIgnoringCase(*like, name) ? &*like : nullptr;
}
