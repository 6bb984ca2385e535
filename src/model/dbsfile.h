// A .DBS file: up to 1000 database entries. The only class of data file that the tool can also make anew.
#pragma once

#include "model/datafile.h"

class TSXdbsfile : public TSXdatafile {
public:
    // Reads DBASE/basename.DBS. A file that can't be opened is a new one: valid, not on disk, without
    // records.
    TSXdbsfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename);

protected:
    Chunk readchunk(TSXbinfile& file, const char* tag) override;
    void forget() override;

private:
    Chunk readfields(TSXbinfile& file);
    Chunk readentries(TSXbinfile& file);

    std::int32_t fieldcount = 0; // of each entry
};
