// The look-up of a name among the sorted names of a directory, which the path rules and the directory search
// share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The entry of that very name, else the first that equals it ignoring the case of ASCII letters, else none.
// The names are in the order of directoryEntries.
const std::string* findName(const std::vector<std::string>& names, std::string_view name);

// Reads the names in a directory, in the order of directoryEntries; with a wanted name only those that equal
// it ignoring the case of ASCII letters. False where it can't be read to its end, and GetLastError tells why:
// half of it must not pass for the whole.
bool readNames(const std::string& directory, std::vector<std::string>& names, std::string_view wanted = {});

// Drops the names of directories that look-ups have kept.
void forgetListings();
