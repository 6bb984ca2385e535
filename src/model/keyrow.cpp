#include "model/keyrow.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "model/database.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "platform/system/letters.h"

namespace {

constexpr std::size_t ahead = 16; // keys lie wherever their files have put them: they are asked for so early
constexpr std::size_t piecesize = sizeof(KeyRow::Record::piece);

static_assert(fileclasscount * maxfiles <= UINT16_MAX && maxrecords <= UINT16_MAX && maxtypes <= UINT8_MAX);

// Eight bytes of a text in small letters as a number that is ordered as they are. After the end of the text
// stand zeros, which no key holds.
std::uint64_t pieceof(const char* text) {
    std::uint64_t piece = 0;
    for (std::size_t i = 0; i < piecesize; ++i) {
        piece = piece << 8 | smallLetter(*text);
        text += *text != '\0' ? 1 : 0;
    }
    return piece;
}

// Record r of a file of that number.
KeyRow::Record recordof(const TSXdatafile& file, std::size_t number, std::size_t r) {
    const std::string_view key = file.keys[r];
    return {0,
            key.data(),
            static_cast<std::uint16_t>(key.size()),
            static_cast<std::uint16_t>(number),
            static_cast<std::uint16_t>(r),
            static_cast<std::uint8_t>(file.keytypes[r]),
            false};
}

void readpieces(std::span<KeyRow::Record> run, std::size_t depth) {
    for (std::size_t i = 0; i < run.size(); ++i) {
        if (i + ahead < run.size())
            __builtin_prefetch(run[i + ahead].key + depth);
        run[i].piece = pieceof(run[i].key + depth);
    }
}

// No function, so that the sort has it inside of its loops.
constexpr auto before = [](const KeyRow::Record& a, const KeyRow::Record& b) {
    return a.piece != b.piece ? a.piece < b.piece : std::tie(a.file, a.record) < std::tie(b.file, b.record);
};

// Puts the records into the order of one byte of their pieces; those that are equal there keep their order.
// False, and nothing is done, if all are.
bool sortbybyte(std::span<const KeyRow::Record> records, std::span<KeyRow::Record> sorted, int shift) {
    const auto byteof = [shift](const KeyRow::Record& record) { return record.piece >> shift & 0xFF; };
    std::array<std::size_t, 257> starts = {};
    for (const KeyRow::Record& record : records)
        ++starts[byteof(record) + 1];
    if (std::ranges::find(starts, records.size()) != starts.end())
        return false;
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (const KeyRow::Record& record : records)
        sorted[starts[byteof(record)]++] = record;
    return true;
}

// Sorts a run of records, which stand in the order of the files, by their pieces.
void sortrun(std::span<KeyRow::Record> run, std::span<KeyRow::Record> spare) {
    constexpr std::size_t few = 1000; // so many are sooner compared with each other than counted
    if (run.size() <= few) {
        std::ranges::sort(run, before);
        return;
    }
    std::span<KeyRow::Record> from = run;
    std::span<KeyRow::Record> to = spare.first(run.size());
    for (int shift = 0; shift < 64; shift += 8)
        if (sortbybyte(from, to, shift))
            std::swap(from, to);
    if (from.data() != run.data())
        std::ranges::copy(from, run.begin());
}

} // namespace

KeyRow::KeyRow(const TSXdatabase& database) {
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            if (list->files[i]->valid != 0 && !list->files[i]->keys.empty()) {
                files.push_back(list->files[i].get());
                count += files.back()->keys.size() - 1;
            }
}

void KeyRow::fill(std::span<Record> room, std::span<Record> spareroom) {
    records = room;
    spare = spareroom;
    auto record = records.begin();
    for (std::size_t number = 0; number < files.size(); ++number)
        for (std::size_t r = 1; r < files[number]->keys.size(); ++r, ++record)
            *record = recordof(*files[number], number, r);
    sort(records, commonlength());
}

// How many bytes all keys have in common at the front.
std::size_t KeyRow::commonlength() const {
    std::size_t common = records.empty() ? 0 : records[0].length;
    for (std::size_t i = 1; i < records.size() && common > 0; ++i) {
        const char* const key = records[i].key;
        std::size_t same = 0;
        while (same < common && smallLetter(key[same]) == smallLetter(records[0].key[same]))
            ++same;
        common = same;
    }
    return common;
}

// Sorts a run of records whose keys are equal in front of the depth by what follows, and each run of those
// that are equal in the next piece too to its end, while the keys of the next runs are on their way.
void KeyRow::sort(std::span<Record> run, std::size_t depth) const {
    readpieces(run, depth);
    if (!std::ranges::is_sorted(run, before))
        sortrun(run, spare);
    const auto equal = [&](std::size_t i) { return i < run.size() && run[i].piece == run[i - 1].piece; };
    std::size_t asked = 1;
    for (std::size_t begin = 0, end = 0; begin < run.size(); begin = end) {
        for (end = begin + 1; equal(end); ++end)
            run[end].repeats = true;
        run[begin].repeats = false;
        for (asked = std::max(asked, end); asked < std::min(end + ahead, run.size()); ++asked)
            if (equal(asked) || equal(asked + 1))
                __builtin_prefetch(run[asked].key + depth + piecesize);
        if (end - begin > 1 && run[begin].length >= depth + piecesize)
            sort(run.subspan(begin, end - begin), depth + piecesize);
    }
}
