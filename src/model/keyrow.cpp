#include "model/keyrow.h"

#include <algorithm>
#include <tuple>

#include "model/database.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "platform/system/letters.h"

namespace {

constexpr std::size_t piecesize = sizeof(KeyRow::Record::piece);

static_assert(fileclasscount * maxfiles <= UINT16_MAX && maxrecords <= UINT16_MAX && maxtypes <= UINT8_MAX);

// Eight bytes of a text in small letters as a number that is ordered as they are. Behind the end of the text
// stand zeros, which no key holds.
std::uint64_t pieceof(const char* text) {
    std::uint64_t piece = 0;
    for (std::size_t i = 0; i < piecesize; ++i) {
        piece = piece << 8 | smallLetter(*text);
        text += *text != '\0' ? 1 : 0;
    }
    return piece;
}

// No function, so that the sort has it inside of its loops.
constexpr auto before = [](const KeyRow::Record& a, const KeyRow::Record& b) {
    return a.piece != b.piece ? a.piece < b.piece : std::tie(a.file, a.record) < std::tie(b.file, b.record);
};

} // namespace

// First all keys count as equal. Piece by piece those that are equal so far are sorted and told apart.
KeyRow::KeyRow(const TSXdatabase& database) {
    std::size_t total = 0;
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            total += static_cast<std::size_t>(list->files[i]->keycount);
    records.reserve(total);
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            if (list->files[i]->valid != 0)
                addfile(*list->files[i]);
    for (std::size_t depth = 0; tellapart(depth); depth += piecesize) {
    }
}

void KeyRow::addfile(TSXdatafile& file) {
    for (std::size_t r = 1; r < file.keys.size(); ++r)
        records.push_back({0, file.keys[r].data(), static_cast<std::uint16_t>(file.keys[r].size()),
                           static_cast<std::uint16_t>(files.size()), static_cast<std::uint16_t>(r),
                           static_cast<std::uint8_t>(file.keytypes[r]), !records.empty()});
    files.push_back(&file);
}

// Sorts the keys that are equal in front of the depth, and go on there, by their next piece. False if there
// are none.
bool KeyRow::tellapart(std::size_t depth) {
    readpieces(depth);
    bool found = false;
    for (auto begin = records.begin(); begin != records.end();) {
        auto end = begin + 1;
        while (end != records.end() && end->repeats)
            ++end;
        if (end - begin > 1 && begin->length >= depth) {
            found = true;
            if (!std::is_sorted(begin, end, before))
                std::sort(begin, end, before);
            begin->repeats = false;
            for (auto record = begin + 1; record != end; ++record)
                record->repeats = record->piece == (record - 1)->piece;
        }
        begin = end;
    }
    return found;
}

void KeyRow::readpieces(std::size_t depth) {
    const std::size_t count = records.size();
    const auto wanted = [&](std::size_t i) {
        return records[i].length >= depth &&
               (records[i].repeats || (i + 1 < count && records[i + 1].repeats));
    };
    // The keys lie wherever their files have put them: they are asked for some time before they are read.
    constexpr std::size_t ahead = 16;
    for (std::size_t i = 0; i < count; ++i) {
        if (i + ahead < count && wanted(i + ahead))
            __builtin_prefetch(records[i + ahead].key + depth);
        if (wanted(i))
            records[i].piece = pieceof(records[i].key + depth);
    }
}
