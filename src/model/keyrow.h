// All records of the valid data files in a row by their keys, ignoring the case of ASCII letters; those of
// one key in the order of the files. It is what the key index is built from.
#pragma once

#include <cstddef>
#include <cstdint>
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

    std::vector<Record> records;
    std::vector<TSXdatafile*> files;

private:
    void addfile(TSXdatafile& file);
    std::size_t commonlength() const;
    bool tellapart(std::size_t depth);
    void readpieces(std::size_t depth);
};
