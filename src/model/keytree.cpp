#include "model/keytree.h"

#include <algorithm>
#include <bit>
#include <new>

#include "model/database.h"
#include "model/keyentry.h"
#include "model/keyrow.h"
#include "platform/system/letters.h"

namespace {

constexpr int sortedpercent = 45; // of the time that the judging of the keys takes

}

TSXkeytree::TSXkeytree(TSXdatabase& owner) : database(owner) {}

TSXkeyentry* TSXkeytree::find(std::string_view key) const {
    TSXkeyentry* entry = root;
    while (entry != nullptr) {
        const int order = compareIgnoringCase(key, entry->key);
        if (order == 0)
            break;
        entry = order < 0 ? entry->left : entry->right;
    }
    return entry;
}

// Insertion by balance factors: on the way back up, as long as the subtree just left has grown in height.
TSXkeyentry& TSXkeytree::findoradd(std::string_view key) {
    Link* way[64]; // the links that were passed: more than a balanced tree of all that memory holds
    way[0] = &root;
    std::size_t depth = 0;
    added = 0;
    for (; *way[depth] != nullptr; ++depth) {
        TSXkeyentry& entry = **way[depth];
        const int order = compareIgnoringCase(key, entry.key);
        if (order == 0)
            return entry;
        way[depth + 1] = order < 0 ? &entry.left : &entry.right;
    }
    added = 1;
    ++size;
    TSXkeyentry& made = *new (allocate<TSXkeyentry>(1)) TSXkeyentry(database, database.keytexts.keep(key));
    *way[depth] = &made;
    for (bool taller = true; taller && depth > 0; --depth)
        taller = grow(*way[depth - 1], way[depth] == &(*way[depth - 1])->left ? -1 : 1);
    return made;
}

// The subtree on one side, -1 left or 1 right, has grown; answers whether the one at the link has grown with
// it.
bool TSXkeytree::grow(Link& link, int side) {
    if (link->balance == side) {
        repair(link, side);
        return false;
    }
    link->balance = static_cast<std::int8_t>(link->balance + side);
    return link->balance != 0;
}

// One rotation, or two where the side has grown at its inner subtree.
void TSXkeytree::repair(Link& link, int side) {
    const auto outer = side < 0 ? &TSXkeyentry::left : &TSXkeyentry::right;
    const auto inner = side < 0 ? &TSXkeyentry::right : &TSXkeyentry::left;
    const Link top = link;
    const Link child = top->*outer;
    const bool twice = child->balance != side;
    link = twice ? child->*inner : child;
    top->balance = static_cast<std::int8_t>(twice && link->balance == side ? -side : 0);
    child->balance = static_cast<std::int8_t>(twice && link->balance == -side ? side : 0);
    if (twice) {
        child->*inner = link->*outer;
        link->*outer = child;
    }
    top->*outer = link->*inner;
    link->*inner = top;
    link->balance = 0;
}

// There are at most as many entries as records. Before there is any, the row is sorted with the help of their
// memory. The occurrences take the memory of the row from its front, none of them beyond the last record that
// was read.
void TSXkeytree::build() {
    using Record = KeyRow::Record;
    static_assert(sizeof(Occurrence) <= sizeof(Record) && sizeof(Record) <= sizeof(TSXkeyentry));
    clear();
    KeyRow row(database);
    TSXkeyentry* const entries = builtentries.room<TSXkeyentry>(row.size()).data();
    row.fill(builtrecords.room<Record>(row.size()), builtentries.room<Record>(row.size()));
    if (database.judged)
        database.judged(sortedpercent);
    Occurrence* occurrence = builtrecords.room<Occurrence>(row.size()).data();
    for (auto record = row.records.begin(); record != row.records.end(); ++size) {
        const auto next =
            std::find_if(record + 1, row.records.end(), [](const Record& other) { return !other.repeats; });
        const std::string_view key(record->key, record->length);
        Occurrence* const first = occurrence;
        for (; record != next; ++record)
            new (occurrence++) Occurrence{row.files[record->file], record->record, record->type};
        if (!std::ranges::is_sorted(first, occurrence, {}, &Occurrence::type))
            std::ranges::stable_sort(first, occurrence, {}, &Occurrence::type);
        new (entries + size) TSXkeyentry(database, key, {first, occurrence});
    }
    root = balanced(entries, size);
}

// The tree of entries that stand in a row by their keys, as low as it can be.
TSXkeyentry* TSXkeytree::balanced(TSXkeyentry* entries, std::size_t count) {
    if (count == 0)
        return nullptr;
    const std::size_t before = count / 2;
    const std::size_t behind = count - 1 - before;
    TSXkeyentry* const middle = entries + before;
    middle->left = balanced(entries, before);
    middle->right = balanced(middle + 1, behind);
    middle->balance = static_cast<std::int8_t>(std::bit_width(behind) - std::bit_width(before));
    return middle;
}

// Nothing that stands in this memory needs its destructor.
void TSXkeytree::clear() {
    root = nullptr;
    size = 0;
    arena.release();
}

void TSXkeytree::flatten() {
    database.keyarray.resize(static_cast<std::size_t>(database.keytotal) + 1);
    database.keyarray.reserve(database.keyarray.size() + size);
    walk(root);
}

void TSXkeytree::walk(TSXkeyentry* entry) {
    if (entry == nullptr)
        return;
    walk(entry->left);
    ++database.keytotal;
    database.keyarray.push_back(entry);
    walk(entry->right);
}

Occurrence* TSXkeytree::makerecords(std::size_t count) {
    return allocate<Occurrence>(count);
}
