// What belongs to an entry of a directory beside its content: its attributes, its names, and how they are
// given back. Paths are taken as they stand. Unless a line says otherwise each operation gives false on
// failure, and GetLastError then tells why.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

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

enum class OfLink { target, itself };

// A missing entry is no failure.
bool readEntry(const std::string& path, OfLink links, EntryState& state);
bool readAttributes(const std::string& path,
                    std::vector<Attribute>& attributes); // extended ones; of a link, its own
bool readLink(const std::string& path, std::string& target);
bool readFullPath(const std::string& path, std::string& full); // from the root, through no link

// Gives an entry its owner, permissions, extended attributes and times. False where any of it was refused;
// the rest is given all the same.
bool giveState(const std::string& path, const EntryState& state, const std::vector<Attribute>& attributes);
bool giveTimes(const std::string& path, const EntryState& state); // of a link, to what it points to

// Of a new name, which must not be there yet.
bool makeLink(const std::string& path, const std::string& target);
bool addName(const std::string& path, const std::string& existing); // a second name of one file

bool makePrivateDirectories(
    const std::string& path);                  // for the user alone, with all above it that are missing
bool removeDirectory(const std::string& path); // an empty one
bool cutFile(const std::string& path, std::int64_t size);
// Puts a file, or the names in a directory, on the disk itself.
bool syncEntry(const std::string& path);

// New files and directories are readable by the user alone as long as this lives.
class PrivateFiles {
public:
    PrivateFiles();
    PrivateFiles(const PrivateFiles&) = delete;
    PrivateFiles& operator=(const PrivateFiles&) = delete;
    ~PrivateFiles();

private:
    unsigned usual_;
};
