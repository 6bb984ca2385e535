#include "model/keyentry.h"

#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"

TSXkeyentry::TSXkeyentry(const TSXdatabase& database, std::string_view text,
                         std::span<Occurrence> firstrecords)
    : key(text), lasttype(static_cast<std::int16_t>(database.lasttype)), first(firstrecords.data()),
      count(static_cast<std::uint32_t>(firstrecords.size())), room(count) {}

std::span<const Occurrence> TSXkeyentry::list(int t) const {
    const std::span<const Occurrence> all = records();
    const auto type = [](const Occurrence& occurrence) { return occurrence.type; };
    return {std::ranges::lower_bound(all, t, {}, type), std::ranges::upper_bound(all, t, {}, type)};
}

void TSXkeyentry::addoccurrence(int t, TSXdatafile& file, int record) {
    if (t < 0 || t > lasttype)
        return;
    const auto place = list(t).end() - records().begin();
    if (count == room) {
        room = std::max(2 * room, std::uint32_t{1});
        Occurrence* const larger = file.database.keytree.makerecords(room);
        std::copy_n(first, count, larger);
        first = larger;
    }
    std::copy_backward(first + place, first + count, first + count + 1);
    first[place] = {&file, record, t};
    ++count;
}

void TSXkeyentry::removeoccurrence(int t, int n) {
    if (n < 1 || n > occurrences(t))
        return;
    Occurrence* const removed = first + (list(t).begin() - records().begin()) + (n - 1);
    std::copy(removed + 1, first + count, removed);
    --count;
}

Occurrence TSXkeyentry::occurrence(int t, int n) const {
    if (n < 1 || n > occurrences(t))
        return {};
    return list(t)[static_cast<std::size_t>(n - 1)];
}
