// The directory search. The wildcard is one * in the last component; it matches ignoring the case of ASCII
// letters and also stands for nothing and for a leading point. Matches arrive in the order of Tree::names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/system/filestate.h"

constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x01;  // no write bit is set
constexpr std::uint32_t FILE_ATTRIBUTE_HIDDEN = 0x02;    // the name begins with a point
constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10; // a link counts as what it points to
constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;    // none of the others

struct WIN32_FIND_DATAA {
    std::uint32_t dwFileAttributes = 0;
    std::string cFileName;     // no directory
    FileIdentity identity;     // of what a link points to
    std::string outside;       // the link, below the tree's directory, by which it lies outside; else empty
    std::uint32_t failure = 0; // the error number where attributes and identity could not be had; else 0
};

class Tree;
struct FileSearch;
using FindHandle = FileSearch*;

// Starts a search of a directory in a tree, which must outlive it. The first match stands in data. No handle
// when nothing matches (GetLastError gives 2), there is no such directory (3) or it can't be read (it tells
// why). passedOver gets the names that match and are not reported: a look-up of such a name with the
// pattern's extension in place of its own would open another entry, which then would be read twice, or, where
// it holds a backslash, lead elsewhere.
FindHandle FindFirstFileA(Tree& tree, const std::string& pattern, WIN32_FIND_DATAA& data,
                          std::vector<std::string>& passedOver);

// The next match. 0 when there is none.
int FindNextFileA(FindHandle search, WIN32_FIND_DATAA& data);

// Ends a search; no handle is no harm.
void FindClose(FindHandle search);
