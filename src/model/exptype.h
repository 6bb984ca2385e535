// An experiment type: a named kind of experiment within a file class. Types come into being by what the data
// files name.
#pragma once

#include <cstdint>

#include "platform/system/cobject.h"
#include "platform/system/text.h"

class TSXexptype : public CObject {
public:
    TSXexptype(int fileclass, const char* typetext); // writes a line to the log

    std::int32_t classid;        // file class; 0 for the type "Database"
    Text<200> name;              // as first met
    std::int32_t filecount = 0;  // valid files of this type, counted by each analysis pass
    std::int32_t entrycount = 0; // records of valid files of this type, counted likewise
};
