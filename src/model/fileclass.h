// The six file classes as a table: 0 the database entries, 1 to 5 the experiments. The number is the index of
// the file list, the class of a file and of an experiment type.
#pragma once

#include <string_view>
#include <vector>

constexpr int fileclasscount = 6;

struct FileClass {
    const char* directory;       // below the database directory
    const char* extension;       // without a point
    const char* header;          // the counted string at the start of a data file
    const char* typetag;         // the chunk with the name of the file's type; empty where there is none
    const char* recordtag;       // the chunk with the records
    bool counted;                // a number of records stands before them; else there is one
    bool recordtypes;            // each record names its own type
    int recordintegers;          // integers after a record's key and type
    const char* scanlabel;       // in "*** Scanning %s files at %s ***"
    const char* label;           // in "   found %s file '%s'", and in the message about empty files
    const char* recordindent;    // the blanks before a record's line in the log
    const char* wrongheaderline; // the line in the log for a wrong header; empty for none
    const char* damagelabel;     // in the message about a corrupted file; empty where none is known
    const char* sideheader;      // the header of the class's .CNF files; empty where there are none
};

extern const FileClass fileclasses[fileclasscount];

// The directories that a database must have below its own, in the order in which they are tested and as
// messages spell them. Older databases have none for the last class, so that it is no fault where it is
// missing.
extern const std::vector<const char*> treedirectories;

// Whether a database must have that directory.
bool isrequired(std::string_view directory);
