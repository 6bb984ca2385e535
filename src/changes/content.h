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
// The same with other bytes at some offsets, which may lie in holes but not behind the end.
FileContent patched(FileContent content, std::map<std::int64_t, std::string> patches);

Failure writeContent(const FileContent& content, const File& file);

enum class Likeness { same, begun, other }; // begun: the file has the first bytes, and ends then
Failure compare(const File& file, const FileContent& content, Likeness& likeness);

std::uint32_t checksumOf(std::string_view bytes, std::uint32_t before = 0); // CRC-32
Failure checksumOf(const FileContent& content, std::uint32_t& checksum);    // a hole is as zeros are
