// What could not be read, or was left out, while a database was looked at. It is neither empty nor damaged:
// no repair acts on it and no save writes it.
#pragma once

#include <cstdint>
#include <string>

struct Unread {
    enum Weight : std::uint8_t {
        told,  // a second name, or one that opens another file: refuses nothing, changes no status
        part,  // a record, a side file, a directory without data files: itself left alone, the rest can be
               // repaired
        whole, // a data file, a directory of data files, a type: without it no other key can be judged
    };

    // Relative to the database's directory, spelled as on the disk; a type behind its folder.
    std::string name;
    std::string reason; // a sentence in English without line end
    Weight weight = part;
    std::int32_t record = 0; // of a record in a data file, from 1; else 0, or
    static constexpr std::int32_t type = -1;
    bool lasting = true; // found by the load; else by the last analysis, and looked at anew by the next
};
