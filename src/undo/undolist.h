// The undo files of this user: where they are, and how long they stay.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct UndoListEntry {
    std::string path;
    std::int64_t time = 0; // seconds since 1970
    std::string directory; // of the database
    std::int64_t size = 0; // bytes
    std::uint32_t changes = 0;
    bool open = false;  // its run was interrupted, or is still at work
    std::string damage; // why it can't be used; all but path and size are unknown then
};

// The oldest first.
std::vector<UndoListEntry> listUndoFiles();
