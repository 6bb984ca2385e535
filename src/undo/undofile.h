// An undo file as it is read: a header, and behind it what stood before each change. docs/formats.md tells
// the form.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/entry.h"
#include "undo/bytes.h"

struct UndoHeader {
    static constexpr std::size_t size = 68;

    std::uint64_t length = 0;   // bytes of the file that count
    std::uint64_t finished = 0; // bytes of the changes that are finished; the same as length: all
    std::uint64_t device = 0;   // of the database directory
    std::uint64_t inode = 0;
    std::int64_t time = 0; // of the first change, in seconds since 1970
    std::uint32_t changes = 0;
    std::uint32_t checksum = 0; // of what stands behind the header

    bool isOpen() const { return finished < length; }
    std::string encode() const;
    bool decode(std::string_view bytes); // false: this is no sound header
};

// One key field, at most 69 bytes.
struct FieldChange {
    std::int32_t record = 0;
    std::int64_t offset = 0;
    StoredBytes before;
    StoredBytes after;
};

struct UndoItem {
    enum Kind : std::uint8_t { keys = 1, deletion = 2, making = 3, made = 4, times = 5, beside = 6 };

    Kind kind = keys;
    std::uint64_t end = 0;           // offset behind it in the file
    std::string file;                // under the database directory, which is "" itself
    EntryState state;                // before the change; behind it for "made"
    std::uint32_t checksum = 0;      // keys, made: of the whole content
    std::int64_t sizeAfter = 0;      // keys
    std::vector<FieldChange> fields; // keys
    std::string otherName;           // deletion: another name of the same file under the directory, or empty
    std::vector<Attribute> attributes;
    std::string_view content; // deletion; of a link, where it leads to
};

struct UndoFile {
    std::string path;
    std::string bytes;
    UndoHeader header;
    std::string directory; // of the database
    std::string program;   // that made the changes, with its version
    std::vector<UndoItem> items;
};

// Reads the file and tests all of it. Empty when it is sound, else why it can't be used.
std::string readUndoFile(const std::string& path, UndoFile& file);
// The same of bytes that have been read into the file.
std::string parseUndoFile(UndoFile& file);

// The header alone. False where there is no sound one, and where it can't be read: GetLastError then tells
// why, else it is 0.
bool readUndoHeader(const std::string& path, UndoHeader& header);

// Whether the file is about the database in this directory: it is the same directory, on the same device or
// under the same path, since a device may have another number after a new start of the machine. False also
// where that can't be known; GetLastError then tells why, else it is 0.
bool isAbout(const UndoFile& file, const std::string& directory);

std::uint32_t checksumOf(std::string_view bytes, std::uint32_t before = 0); // CRC-32
