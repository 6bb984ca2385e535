// One distinct key with all records that use it, sorted by experiment type. It is a node of the key index.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/cobject.h"

class TSXdatabase;
class TSXdatafile;

// A record: a data file and the record's index in that file's key table.
struct Occurrence {
    TSXdatafile* file = nullptr;
    std::int32_t record = 0;
};

class TSXkeyentry : public CObject {
public:
    TSXkeyentry(TSXdatabase& owner, std::string_view text);

    // Adds a record to the end of the list of type t. A type beyond those known when the entry was made is
    // ignored.
    void addoccurrence(int t, TSXdatafile& file, int record);
    // Takes record n, from 1, out of the list of type t; later ones move up. Out of range nothing happens.
    void removeoccurrence(int t, int n);
    // How many records of type t use the key; 0 if t is out of range.
    int occurrences(int t) const;
    // Record n, from 1, of type t; none and 0 if either is out of range.
    Occurrence occurrence(int t, int n) const;
    // Whether experiments use the key and no database entry has it. The empty key ties nothing.
    bool isorphan() const;

    TSXdatabase& database;
    std::unique_ptr<TSXkeyentry> left;
    std::unique_ptr<TSXkeyentry> right;
    std::int16_t balance = 0; // height of the right subtree less that of the left
    std::string key;          // as it was spelled at the first insertion
    std::int32_t shown = 0;   // 1 if the last analysis found something wrong with the key

    // The types that use the key, ascending, each with its records. A key is used by few types of many, so
    // only these have a list; a list that was emptied stays.
    struct TypeList {
        std::int32_t type;
        std::vector<Occurrence> records;
    };
    std::vector<TypeList> lists;

private:
    std::size_t placeof(int t) const; // in lists, where the list of type t is or would be

    std::int32_t lasttype; // highest experiment type when the entry was made
};
