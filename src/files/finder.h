// The search of a directory for names with a wildcard, through which every scan goes. The wildcard is one *
// in the last component; it matches ignoring the case of ASCII letters and also stands for nothing and for a
// leading point. Matches arrive in the order of Tree::names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/system/cobject.h"
#include "platform/system/text.h"
#include "platform/system/tree.h"

class TSXfinder : public CObject {
public:
    explicit TSXfinder(Tree& searched) : tree(searched) {}

    enum Kind : std::int32_t { file = 1, directory = 2 };

    // Starts a search with a path that has a wildcard and begins with that of the tree. 1 if there is a
    // match, which then stands in the fields, else 0: nothing matches, or the directory could not be read, as
    // failure tells.
    int findfirst(const char* pattern);
    // Non-zero if there was another match, which then stands in the fields, else 0.
    int findnext();
    void findclose(); // ends the search

    Text<400> entryname;            // no directory
    std::int32_t entrykind = 0;     // a Kind; a first match is a directory only if it has no other attribute
    FileIdentity entryidentity;     // none where the disk did not tell
    std::uint64_t entrynames = 0;   // that this file has
    std::string entryoutside;       // the link by which it lies outside of the tree; else empty
    std::uint32_t entryfailure = 0; // the error number where it did not tell what the match is; else 0
    std::uint32_t failure = 0;      // of the directory: the error number; 0 also where there is none
    bool missing = false;           // there is no such directory
    // Names that match and are not reported: a look-up of such a name with the pattern's extension in place
    // of its own would open another entry, which then would be read twice, or, where it holds a backslash,
    // lead elsewhere.
    std::vector<std::string> passedover;

private:
    int take();

    Tree& tree;
    std::string folder; // the directory, with its separator after it
    std::vector<std::string> matches;
    std::size_t next = 0;
};
