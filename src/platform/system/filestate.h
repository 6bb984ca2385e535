// Which file it is and how it stands, to see whether two names lead to one file and whether another program
// has written it meanwhile.
#pragma once

#include <compare>
#include <cstdint>

// Which file it is, whatever its name.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0; // 0: of no file

    auto operator<=>(const FileIdentity& other) const = default;
};

// A file as it stood at a moment; another state of the same file shows that it was written meanwhile.
struct FileState {
    FileIdentity identity;
    std::int64_t size = 0;
    std::int64_t modified = 0; // nanoseconds

    bool operator==(const FileState& other) const = default;
    // Whether nothing shows that it was written meanwhile. The number of a file is not asked: some file
    // systems of other machines give it another one while a program runs.
    bool isUnchanged(const FileState& other) const {
        return size == other.size && modified == other.modified;
    }
};
