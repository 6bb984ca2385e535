// What belongs to an entry of a directory beside its content.
#pragma once

#include <cstdint>
#include <string>

struct Moment {
    std::int64_t seconds = 0; // since 1970
    std::uint32_t nanoseconds = 0;
    bool operator==(const Moment&) const = default;
};

struct EntryState {
    enum Kind : std::uint8_t { missing, plain, directory, symbolic, other };

    Kind kind = missing;
    std::uint32_t permissions = 0; // the twelve bits
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t names = 0; // hard links
    std::int64_t size = 0;
    Moment read;
    Moment changed;
};

struct Attribute {
    std::string name;
    std::string value;
};

// Of places of the person's own. False on failure, and GetLastError then tells why.
bool readFullPath(const std::string& path, std::string& full); // from the root, through no link
// For the user alone, with all above it that are missing.
bool makePrivateDirectories(const std::string& path);
