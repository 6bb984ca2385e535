// The key index: an AVL tree with one entry for each distinct key, compared ignoring the case of ASCII
// letters. It is derived from the key tables, built anew by each analysis pass, and never saved.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <span>
#include <string_view>

#include "platform/system/cobject.h"

class TSXdatabase;
class TSXkeyentry;
struct Occurrence;

// Memory that holds one row of things after another and goes back to the system only with its owner, since
// the system clears each page that it hands out anew.
class KeptMemory {
public:
    // Place for so many things, which need no destructor. What stands here stays, unless more is asked for
    // than ever before. What is never written to takes no memory.
    template <class Thing> std::span<Thing> room(std::size_t count) {
        if (count * sizeof(Thing) > size_)
            grow(count * sizeof(Thing));
        return {static_cast<Thing*>(static_cast<void*>(bytes_.get())), count};
    }

private:
    void grow(std::size_t size) {
        size_ = 0;
        bytes_.reset(); // first, so that the two are never there at once
        bytes_ = std::make_unique_for_overwrite<std::byte[]>(size);
        size_ = size;
    }

    std::unique_ptr<std::byte[]> bytes_;
    std::size_t size_ = 0;
};

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
    static bool grow(Link& link, int side);
    static void repair(Link& link, int side);
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
