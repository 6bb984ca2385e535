// An experiment type: a named kind of experiment within a file class. Types come into being by what the data
// files name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/cobject.h"
#include "platform/system/letters.h"
#include "platform/system/text.h"
#include "reporting/log.h"

class TSXexptype : public CObject {
public:
    TSXexptype(int fileclass, std::string_view typetext)
        : classid(fileclass), name(std::string(typetext).c_str()) {
        logLine(Text<300>().format(">>>>>>>>>> Added new experiment type %d %s", classid, name.c_str()));
    }

    std::int32_t classid;        // file class; 0 for the type "Database"
    Text<200> name;              // as first met
    std::int32_t filecount = 0;  // valid files of this type, counted by each analysis pass
    std::int32_t entrycount = 0; // records of valid files of this type, counted likewise
};

// By what a type is found, ignoring the case of its name's letters: each record may name its own.
struct TypeName {
    int classid;
    std::string_view name;

    bool operator==(const TypeName& other) const {
        return classid == other.classid && equalIgnoringCase(name, other.name);
    }
    struct Hash {
        std::size_t operator()(const TypeName& type) const {
            auto hash = static_cast<std::size_t>(type.classid);
            for (const char byte : type.name)
                hash = hash * 31 + smallLetter(byte);
            return hash;
        }
    };
};
