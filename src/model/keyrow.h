// All records of the valid data files in a row by their keys, ignoring the case of ASCII letters; those of
// one key in the order of the files. It is what the key index is built from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class TSXdatabase;
class TSXdatafile;

class KeyRow {
public:
    struct Record {
        std::uint64_t piece; // the bytes of the key by which it is being sorted
        const char* key;     // with a terminator
        std::uint16_t length;
        std::uint16_t file; // in files
        std::uint16_t record;
        std::uint8_t type;
        bool repeats; // the key is that of the record before
    };

    explicit KeyRow(const TSXdatabase& database);

    std::size_t size() const { return count; }
    // Puts the records into room of just their size and sorts them, for which the spare room is as large.
    void fill(std::span<Record> room, std::span<Record> spareroom);

    std::span<Record> records;
    std::vector<TSXdatafile*> files;

private:
    std::size_t commonlength() const;
    void sort(std::span<Record> run, std::size_t depth) const;

    std::size_t count = 0;
    std::span<Record> spare;
};
