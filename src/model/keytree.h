// The key index: an AVL tree with one entry for each distinct key, compared ignoring the case of ASCII
// letters. It is derived from the key tables, built anew by each analysis pass, and never saved.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>

#include "model/keptmemory.h"
#include "platform/system/cobject.h"

class TSXdatabase;
class TSXkeyentry;
struct Occurrence;

class TSXkeytree : public CObject {
public:
    explicit TSXkeytree(TSXdatabase& owner);

    // The entry of the key, none if there is none.
    TSXkeyentry* find(std::string_view key) const;
    // The entry of the key, made if there is none. It stays in the tree until clear.
    TSXkeyentry& findoradd(std::string_view key);
    // Clears the tree and fills it with the records of all valid files, as if each were found or added in the
    // order of the files.
    void build();
    void clear();
    // Appends all entries in key order to the keytotal keys in keyarray of the database, and counts them
    // there.
    void flatten();
    // Place for records of an entry, which stays until clear.
    Occurrence* makerecords(std::size_t count);

    TSXdatabase& database;
    TSXkeyentry* root = nullptr;
    std::int32_t added = 0; // 1 if the last findoradd made a new entry

private:
    using Link = TSXkeyentry*;
    TSXkeyentry& insert(Link& link, std::string_view key, bool& taller);
    static bool grow(Link& link, int side);
    static void repairleft(Link& link);
    static void repairright(Link& link);
    static TSXkeyentry* balanced(TSXkeyentry* entries, std::size_t count);
    void walk(TSXkeyentry* entry);
    template <class Thing> Thing* allocate(std::size_t count) {
        return static_cast<Thing*>(arena.allocate(count * sizeof(Thing), alignof(Thing)));
    }

    // Entries and their records, all of which go at once: those of the last build, and what came since.
    KeptMemory builtentries;
    KeptMemory builtrecords;
    std::pmr::monotonic_buffer_resource arena;
    std::size_t size = 0; // entries in the tree
};
