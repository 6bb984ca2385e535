#include "model/keyentry.h"

#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"

TSXkeyentry::TSXkeyentry(const TSXdatabase& database, std::string_view text,
                         std::span<Occurrence> firstrecords)
    : key(text), first(firstrecords.data()), count(static_cast<std::uint32_t>(firstrecords.size())),
      lasttype(static_cast<std::uint8_t>(database.lasttype)) {}

std::span<const Occurrence> TSXkeyentry::list(int t) const {
    const auto begin = std::ranges::lower_bound(records(), t, {}, &Occurrence::type);
    return {begin, std::ranges::upper_bound(begin, records().end(), t, {}, &Occurrence::type)};
}

// The lists grow by one: few keys get another record, and then one.
void TSXkeyentry::addoccurrence(int t, TSXdatafile& file, int record) {
    if (t < 0 || t > lasttype)
        return;
    const auto end = list(t).end();
    Occurrence* const larger = file.database.keytree.makerecords(count + 1);
    Occurrence* const at = std::copy(records().begin(), end, larger);
    std::copy(end, records().end(), at + 1);
    *at = {&file, record, t};
    first = larger;
    ++count;
}

void TSXkeyentry::removeoccurrence(int t, int n) {
    if (n < 1 || n > occurrences(t))
        return;
    Occurrence* const removed = first + (list(t).data() - first) + (n - 1);
    std::copy(removed + 1, first + count, removed);
    --count;
}

Occurrence TSXkeyentry::occurrence(int t, int n) const {
    const std::span<const Occurrence> found = list(t);
    return n >= 1 && n <= static_cast<int>(found.size()) ? found[static_cast<std::size_t>(n - 1)]
                                                         : Occurrence();
}
