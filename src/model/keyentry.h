// One distinct key with all records that use it, sorted by experiment type. It is a node of the key index.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

class TSXdatabase;
class TSXdatafile;

// A record: a data file and the record's index in that file's key table.
struct Occurrence {
    TSXdatafile* file = nullptr;
    std::int32_t record = 0;
    std::int32_t type = 0; // experiment type of the record
};

class TSXkeyentry {
public:
    // The text has to stay as long as the entry, with a terminator after it, and so do the records that it
    // may start with, which ascend by type. The key index, which makes the entries, sees to both.
    TSXkeyentry(const TSXdatabase& database, std::string_view text, std::span<Occurrence> firstrecords = {});
    TSXkeyentry(const TSXkeyentry&) = delete;
    TSXkeyentry& operator=(const TSXkeyentry&) = delete;

    // Adds a record to the end of the list of type t. A type beyond those known when the entry was made is
    // ignored.
    void addoccurrence(int t, TSXdatafile& file, int record);
    // Takes record n, from 1, out of the list of type t; later ones move up. Out of range nothing happens.
    void removeoccurrence(int t, int n);
    // How many records of type t use the key; 0 if t is out of range.
    int occurrences(int t) const { return static_cast<int>(list(t).size()); }
    // Record n, from 1, of type t; none and 0 if either is out of range.
    Occurrence occurrence(int t, int n) const;
    // The records that use the key: of type t, and of all types, which ascend.
    std::span<const Occurrence> list(int t) const;
    std::span<const Occurrence> records() const { return {first, count}; }
    // Calls visit with the records of one type for each type that uses the key, ascending.
    template <class Visit> void foreachlist(Visit visit) const;
    // Whether experiments use the key and no database entry has it. The empty key ties nothing.
    bool isorphan() const { return !key.empty() && count > 0 && first->type != 0; }

    TSXkeyentry* left = nullptr;
    TSXkeyentry* right = nullptr;
    std::string_view key; // as it was spelled at the first insertion

private:
    // All records by ascending type: a key is used by few of many types, so none has a list of its own.
    Occurrence* first;
    std::uint32_t count;
    std::uint8_t lasttype; // highest experiment type when the entry was made

public:
    std::int8_t balance = 0; // height of the right subtree less that of the left
    std::int8_t shown = 0;   // 1 if the last analysis found something wrong with the key
};

template <class Visit> void TSXkeyentry::foreachlist(Visit visit) const {
    for (std::span<const Occurrence> rest = records(); !rest.empty();) {
        std::size_t size = 1;
        while (size < rest.size() && rest[size].type == rest[0].type)
            ++size;
        visit(rest.first(size));
        rest = rest.subspan(size);
    }
}
