#include "content.h"

#include <algorithm>
#include <array>

#include "model/datafile.h"

namespace {

enum Purpose : std::uint64_t { keyshape = 1, keywords, valuewords, recordinteger };

// No collection holds a digit and no form begins with one: the first digits of a key are its number, which is
// why two keys are never alike.
constexpr std::array collections = {"S-",  "K",   "VL-",     "CI ",      "ENV-", "FD",
                                    "WW ", "BK-", "Strain ", "isolate ", "REF-", "Lab. "};
constexpr std::array forms = {"", "", "", "/A", "-2", "T", ".1", " (ref)", "/17", "_b"};
constexpr const char* commonbeginning = "Collection of the west ward - ";
constexpr std::array words = {"blood",  "stool", "urine", "river",  "ward", "broth", "soil",  "swab",
                              "cheese", "calf",  "plate", "repeat", "west", "clone", "typed", "frozen"};
constexpr std::array fieldnames = {"Species", "Source", "Isolated", "Received by", "Box", "Remarks"};
constexpr std::array<std::array<const char*, 3>, 6> typenames = {{
    {},
    {"Banding A", "Banding B", "Ladder"},
    {"Panel 20", "Resistance", "Fatty acids"},
    {"16S rRNA", "gyrB", "rpoD"},
    {"Pairing", "Serology", "Plate match"},
    {"Spots 4-7", "Membrane", "Secretome"},
}};

template <typename Table> const char* pick(const Table& table, std::uint64_t random) {
    return table[static_cast<std::size_t>(random % table.size())];
}

template <typename Table> std::string numbered(const Table& table, int index) {
    const auto size = static_cast<int>(table.size());
    const std::string name = table[static_cast<std::size_t>(index % size)];
    return index < size ? name : name + " " + std::to_string(index / size + 1);
}

} // namespace

// The mixing steps of SplitMix64.
std::uint64_t Content::mix(std::uint64_t purpose, std::int64_t number) const {
    std::uint64_t bits = (std::uint64_t{seed_} << 32) ^ (purpose << 56) ^ static_cast<std::uint64_t>(number);
    bits += 0x9E3779B97F4A7C15U;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
    return bits ^ (bits >> 31);
}

std::string Content::lengthened(std::string text, std::int64_t number, std::size_t length) const {
    std::uint64_t random = mix(keywords, number);
    while (text.size() < length) {
        text.append(" ").append(pick(words, random));
        random >>= 4;
    }
    text.resize(length);
    if (text.back() == ' ')
        text.back() = '+';
    return text;
}

// The collection and the number of a key.
std::string Content::beginning(std::int64_t number, KeyStyle style) const {
    const std::uint64_t shape = mix(keyshape, number);
    const bool ordered = style == KeyStyle::ordered;
    std::string digits = std::to_string(number);
    const std::size_t width = ordered ? 8 : ((shape & 1) != 0 ? 5 : 0);
    digits.insert(0, width - std::min(width, digits.size()), '0');
    const std::string text = (ordered ? collections[0] : pick(collections, shape >> 8)) + digits;
    return style == KeyStyle::prefixed ? commonbeginning + text : text;
}

std::string Content::key(std::int64_t number, std::size_t length) const {
    const std::uint64_t shape = mix(keyshape, number);
    const std::string text =
        beginning(number, length == 0 ? style_ : KeyStyle::shuffled) + pick(forms, shape >> 16);
    if (length == 0 && (shape >> 24) % 32 == 0)
        length = maxkeylength;
    if (length == 0 && (shape >> 24) % 2 == 0)
        length = std::max<std::size_t>(24 + (shape >> 32) % 32, text.size());
    return length == 0 ? text : lengthened(text, number, length);
}

std::string Content::fieldvalue(std::int64_t number, int field) const {
    const std::uint64_t shape = mix(valuewords, number * 128 + field);
    if (shape % 8 == 0)
        return {};
    if (shape % 101 == 0)
        return lengthened("Remark:", number, 200);
    std::string text = pick(words, shape >> 8);
    return (shape >> 16) % 2 == 0 ? text : text + " " + std::to_string((shape >> 24) % 1000);
}

std::int32_t Content::integer(std::int64_t number) const {
    return static_cast<std::int32_t>(mix(recordinteger, number) % 100000);
}

std::string fieldname(int field) {
    return numbered(fieldnames, field);
}

std::string typenameof(int fileclass, int t) {
    return numbered(typenames[static_cast<std::size_t>(fileclass)], t);
}
