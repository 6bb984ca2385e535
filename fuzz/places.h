// The form of an input: any number of files, each a byte for its place, two for its length, low byte first,
// and its content.
#pragma once

constexpr const char* places[] = {"DBASE/A.DBS", "DBASE/B.DBS",        "fprint/A.DEF", "char/A.DEF",
                                  "seq/A.DEF",   "matrix/A.DEF",       "gel2d/A.DEF",  "fprint/A.CNF",
                                  "char/A.CNF",  "seq/A.CNF",          "matrix/A.CNF", "gel2d/A.CNF",
                                  "A.CMP",       "Library/A.LIB/A.CMP"};

// A target takes some of the places. The seeds and the targets number them from its first.
struct Target {
    const char* name;
    int first;
    int count;
};
constexpr Target targets[] = {
    {"fuzz_dbs", 0, 2}, {"fuzz_def", 2, 5}, {"fuzz_sidefiles", 7, 7}, {"fuzz_tree", 0, 14}};
