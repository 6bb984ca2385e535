// What a file holds that goes or comes, in pieces, wherever they lie: gigabytes take no memory, and bytes of
// a hole are in no piece.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/system/file.h"

struct FileContent {
    using Visit = std::function<Failure(std::int64_t offset, std::string_view bytes)>;

    std::int64_t size = 0;
    // Calls visit with each piece, ascending, until one fails.
    std::function<Failure(const Visit&)> pieces = [](const Visit&) { return Failure(); };
};

FileContent contentOf(std::string bytes);
FileContent contentOf(std::shared_ptr<const File> file, std::int64_t size);
Failure wholeOf(const FileContent& content, std::string& bytes); // of a short one
// The same with other bytes at some offsets, which lie in no hole and are key fields at most.
FileContent patched(FileContent content, std::map<std::int64_t, std::string> patches);

Failure writeContent(const FileContent& content, const File& file);

// What stands at a part of a change. Torn: each byte is one of before or of after; of a file that is to come,
// its first bytes.
enum class Standing : std::uint8_t { before, after, torn, other };
// Whether the file holds that content: after, torn or other.
Failure compare(const File& file, const FileContent& content, Standing& standing);

std::uint32_t checksumOf(std::string_view bytes, std::uint32_t before = 0); // CRC-32
Failure checksumOf(const FileContent& content, std::uint32_t& checksum);    // a hole is as zeros are
