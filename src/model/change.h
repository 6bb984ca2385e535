// The changes of the disk: what one is, and who is asked before a group of them is made.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Change {
    enum Kind : std::uint8_t { key, deletion, making };

    Kind kind = key;
    std::string file; // relative to the database's directory, as it is spelled on the disk
    // Of a key alone:
    std::int32_t record = 0; // from 1
    std::int64_t offset = 0; // of the key field
    std::string oldkey;      // as it was loaded
    std::string newkey;      // as it is to be
    // The bytes of the field as they stand on the disk; fewer where the file ends in it.
    std::string fieldbefore;
    bool made = false; // of a group: it stands on the disk
};

Change filechange(Change::Kind kind, std::string file); // a deletion or a making

// A change in a line of the log.
std::string describe(const Change& change);

// Keeps what is needed to undo changes.
class ChangeKeeper {
public:
    virtual ~ChangeKeeper() = default;
    // Nothing of the group has been done yet. False: it must not be done, and why has been reported.
    virtual bool before(const std::vector<Change>& group) = 0;
    // The group has been done, as far as that was possible.
    virtual void after() = 0;
};
