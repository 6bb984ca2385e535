#include "model/fileclass.h"

#include <algorithm>

#include "model/dbsfile.h"
#include "model/deffile.h"
#include "model/filelist.h"
#include "platform/system/letters.h"

namespace {

template <class List> std::unique_ptr<TSXfilelist> makelist(TSXdatabase& database) {
    return std::make_unique<List>(database);
}

template <class File>
std::unique_ptr<TSXdatafile> makefile(TSXdatabase& database, TSXfilelist& list, const char* basename) {
    return std::make_unique<File>(database, list, basename);
}

} // namespace

const FileClass fileclasses[fileclasscount] = {
    {.directory = "DBASE",
     .extension = "DBS",
     .header = "TX-DBS-v1.0",
     .typetag = "",
     .recordtag = "ENT",
     .scanlabel = "dbase",
     .foundlabel = "dbase",
     .recordindent = "  ",
     .headerline = "",
     .counted = true,
     .recordtypes = false,
     .recordintegers = 0,
     .emptylabel = "",
     .damagelabel = "database",
     .sideheader = "",
     .makelist = makelist<TSXdbslist>,
     .makefile = makefile<TSXdbsfile>},
    {.directory = "fprint",
     .extension = "DEF",
     .header = "GEL-DEF-v1.0",
     .typetag = "GTP",
     .recordtag = "eEN",
     .scanlabel = "gel",
     .foundlabel = "gel",
     .recordindent = "  ",
     .headerline = "",
     .counted = true,
     .recordtypes = true,
     .recordintegers = 1,
     .emptylabel = "gel",
     .damagelabel = "gel",
     .sideheader = "GELTYPE-CNF-v1.0",
     .makelist = makelist<TSXgellist>,
     .makefile = makefile<TSXgelfile>},
    {.directory = "char",
     .extension = "DEF",
     .header = "PHEN-DEF-v1.0",
     .typetag = "TPE",
     .recordtag = "eEN",
     .scanlabel = "character",
     .foundlabel = "character",
     .recordindent = "  ",
     .headerline = "",
     .counted = true,
     .recordtypes = false,
     .recordintegers = 1,
     .emptylabel = "character",
     .damagelabel = "character",
     .sideheader = "PHENTYPE-CNF-v1.0",
     .makelist = makelist<TSXcharlist>,
     .makefile = makefile<TSXcharfile>},
    {.directory = "seq",
     .extension = "DEF",
     .header = "SEQ-DEF-v1.0",
     .typetag = "TPE",
     .recordtag = "eEN",
     .scanlabel = "seq",
     .foundlabel = "seq",
     .recordindent = " ",
     .headerline = "",
     .counted = true,
     .recordtypes = false,
     .recordintegers = 1,
     .emptylabel = "seq",
     .damagelabel = "sequence",
     .sideheader = "SEQTYPE-CNF-v1.0",
     .makelist = makelist<TSXseqlist>,
     .makefile = makefile<TSXseqfile>},
    {.directory = "matrix",
     .extension = "DEF",
     .header = "PAIRSIMDEF-v1.0",
     .typetag = "TPE",
     .recordtag = "eEN",
     .scanlabel = "pairsim",
     .foundlabel = "pair",
     .recordindent = "  ",
     .headerline = "Invalid file",
     .counted = true,
     .recordtypes = false,
     .recordintegers = 3,
     .emptylabel = "pair",
     .damagelabel = "similarity",
     .sideheader = "PAIRSIMTYPE-CNF-v1.0",
     .makelist = makelist<TSXpairlist>,
     .makefile = makefile<TSXpairfile>},
    {.directory = "gel2d",
     .extension = "DEF",
     .header = "GEL2D-DEF-v1.0",
     .typetag = "",
     .recordtag = "KEY",
     .scanlabel = "2D gel",
     .foundlabel = "gel2d",
     .recordindent = " ",
     .headerline = "",
     .counted = false,
     .recordtypes = true,
     .recordintegers = 1,
     .emptylabel = "gel2d",
     .damagelabel = "",
     .sideheader = "GEL2DTYPE-CNF-v1.0",
     .makelist = makelist<TSXgel2dlist>,
     .makefile = makefile<TSXgel2dfile>},
};

const std::vector<const char*> treedirectories = {"dbase", "fprint", "images",  "char",
                                                  "seq",   "matrix", "library", "bundles"};

bool isrequired(std::string_view directory) {
    return std::any_of(treedirectories.begin(), treedirectories.end(),
                       [&](const char* name) { return equalIgnoringCase(name, directory); });
}
