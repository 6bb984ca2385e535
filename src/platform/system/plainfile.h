// What is done with a plain file as a whole, without a stream on it.
#pragma once

#include <string>
#include <string_view>

// Appends bytes to a plain file, which is made where it is missing, in one piece: an open, a write and a
// close, and nothing else, since a log does this for each of its lines. The path is taken as it stands, and a
// link at its end is refused. False on failure.
bool appendToFile(const std::string& path, std::string_view bytes);

// Deletes a plain file or takes away a link. False on failure; a directory is refused.
bool removeFile(const char* path);

// Puts the names that a directory has gained or lost on the disk itself, and waits for it. path is that of
// one of them, which may have gone.
bool syncDirectoryOf(const char* path);
