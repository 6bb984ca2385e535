#include "model/keyentry.h"

#include <algorithm>

#include "model/database.h"

TSXkeyentry::TSXkeyentry(TSXdatabase& owner, std::string_view text)
    : database(owner), key(text), lasttype(owner.lasttype) {}

std::size_t TSXkeyentry::placeof(int t) const {
    const auto place = std::lower_bound(lists.begin(), lists.end(), t,
                                        [](const TypeList& list, int type) { return list.type < type; });
    return static_cast<std::size_t>(place - lists.begin());
}

void TSXkeyentry::addoccurrence(int t, TSXdatafile& file, int record) {
    if (t < 0 || t > lasttype)
        return;
    const std::size_t place = placeof(t);
    if (place == lists.size() || lists[place].type != t)
        lists.insert(lists.begin() + static_cast<std::ptrdiff_t>(place), TypeList{t, {}});
    lists[place].records.push_back({&file, record});
}

void TSXkeyentry::removeoccurrence(int t, int n) {
    if (n < 1 || n > occurrences(t))
        return;
    auto& records = lists[placeof(t)].records;
    records.erase(records.begin() + (n - 1));
}

int TSXkeyentry::occurrences(int t) const {
    const std::size_t place = placeof(t);
    return place < lists.size() && lists[place].type == t ? static_cast<int>(lists[place].records.size()) : 0;
}

Occurrence TSXkeyentry::occurrence(int t, int n) const {
    if (n < 1 || n > occurrences(t))
        return {};
    return lists[placeof(t)].records[static_cast<std::size_t>(n - 1)];
}

bool TSXkeyentry::isorphan() const {
    if (key.empty() || occurrences(0) > 0)
        return false;
    return std::any_of(lists.begin(), lists.end(),
                       [](const TypeList& list) { return !list.records.empty(); });
}
