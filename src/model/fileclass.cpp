#include "model/fileclass.h"

#include <algorithm>

#include "platform/system/letters.h"

// In this order TSXdbsfile in TSXdbslist, TSXgelfile in TSXgellist, TSXcharfile in TSXcharlist, TSXseqfile in
// TSXseqlist, TSXpairfile in TSXpairlist, TSXgel2dfile in TSXgel2dlist.
const FileClass fileclasses[fileclasscount] = {
    {"DBASE", "DBS", "TX-DBS-v1.0", "", "ENT", true, false, 0, "dbase", "dbase", "  ", "", "database", ""},
    {"fprint", "DEF", "GEL-DEF-v1.0", "GTP", "eEN", true, true, 1, "gel", "gel", "  ", "", "gel",
     "GELTYPE-CNF-v1.0"},
    {"char", "DEF", "PHEN-DEF-v1.0", "TPE", "eEN", true, false, 1, "character", "character", "  ", "",
     "character", "PHENTYPE-CNF-v1.0"},
    {"seq", "DEF", "SEQ-DEF-v1.0", "TPE", "eEN", true, false, 1, "seq", "seq", " ", "", "sequence",
     "SEQTYPE-CNF-v1.0"},
    {"matrix", "DEF", "PAIRSIMDEF-v1.0", "TPE", "eEN", true, false, 3, "pairsim", "pair", "  ",
     "Invalid file", "similarity", "PAIRSIMTYPE-CNF-v1.0"},
    {"gel2d", "DEF", "GEL2D-DEF-v1.0", "", "KEY", false, true, 1, "2D gel", "gel2d", " ", "", "",
     "GEL2DTYPE-CNF-v1.0"},
};

const std::vector<const char*> treedirectories = {"dbase", "fprint", "images",  "char",
                                                  "seq",   "matrix", "library", "bundles"};

bool isrequired(std::string_view directory) {
    return std::ranges::any_of(treedirectories,
                               [&](const char* name) { return equalIgnoringCase(name, directory); });
}
