// What belongs to a file, directory or link beside its content: which one it is, how it stood at a moment,
// and whether another program has written it meanwhile.
#pragma once

#include <compare>
#include <cstdint>
#include <string>

// Which file it is, whatever its name.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0; // 0: of no file

    auto operator<=>(const FileIdentity& other) const = default;
};

struct Moment {
    std::int64_t seconds = 0; // since 1970
    std::uint32_t nanoseconds = 0;
    bool operator==(const Moment&) const = default;
};

// Which file it is, and whether another program has written it.
struct FileStamp {
    FileIdentity identity;
    std::int64_t size = 0;
    Moment changed;

    // Whether nothing shows that it was written meanwhile. The number of a file is not asked: some file
    // systems of other machines give it another one while a program runs.
    bool isUnchanged(const FileStamp& before) const {
        return size == before.size && changed == before.changed;
    }
    // Whether it is the same file too.
    bool operator==(const FileStamp& before) const {
        return identity == before.identity && isUnchanged(before);
    }
};

struct FileState : FileStamp {
    enum Kind : std::uint8_t { missing, plain, directory, symbolic, other };

    Kind kind = missing;
    std::uint32_t permissions = 0; // the twelve bits
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
    std::uint64_t names = 0; // hard links
    Moment read;
};

// An extended attribute.
struct Attribute {
    std::string name;
    std::string value;
};
