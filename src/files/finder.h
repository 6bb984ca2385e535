// The search of a directory for names with a wildcard, through which every scan goes.
#pragma once

#include <cstdint>

#include "platform/system/cobject.h"
#include "platform/system/filesearch.h"
#include "platform/system/text.h"

class TSXfinder : public CObject {
public:
    enum Kind : std::int32_t { file = 1, directory = 2 };

    // Starts a search with a path that has a wildcard. 1 if there is a match, which then stands in the
    // fields, else 0. A name that the search passes over so that no file is read twice gets a line in the
    // log.
    int findfirst(const char* pattern);
    // Non-zero if there was another match, which then stands in the fields, else 0.
    int findnext();
    // Ends the search; called once, also after a findfirst that found nothing.
    void findclose();

    Text<400> entryname;        // no directory
    std::int32_t entrykind = 0; // a Kind; a first match is a directory only if it has no other attribute
    FindHandle handle = nullptr;
};
