// Whole files in memory, and pieces of them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/entry.h"

// The content of a plain file of at most 2 GiB. False on failure, and GetLastError then tells why.
bool readContent(const std::string& path, std::string& content);

// What an entry of that state holds itself: a link, where it leads to; a directory, nothing.
bool readOwnContent(const std::string& path, const EntryState& state, std::string& content);

// The bytes that stand there, fewer where the content ends.
std::string_view bytesAt(std::string_view content, std::int64_t offset, std::size_t count);
