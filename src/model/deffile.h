// The experiment files: one reader, whose five classes differ by their row in the table of file classes. It
// reads the experiment types and the records' keys and walks over everything else. No class here can write a
// whole file.
#pragma once

#include "model/datafile.h"
#include "model/fileclass.h"

class TSXdeffile : public TSXdatafile {
protected:
    // Reads the file of that base name in the directory of its class.
    TSXdeffile(TSXdatabase& owner, TSXfilelist& holder, const char* basename, int fileclass);
    Chunk readchunk(TSXbinfile& file, const char* tag) override;
    void forget() override;

private:
    std::int32_t readtype(TSXbinfile& file, Reading& reading);
    Chunk readrecords(TSXbinfile& file);
    Chunk readsinglerecord(TSXbinfile& file);
    void readrecord(TSXbinfile& file, std::size_t i);

    const FileClass& format;
    Reading typereading = Reading::good; // of the file's own type
};

// The file of a class, whose constructor reads it.
template <int fileclass> class TSXexperimentfile : public TSXdeffile {
public:
    TSXexperimentfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
        : TSXdeffile(owner, holder, basename, fileclass) {}
};

using TSXgelfile = TSXexperimentfile<1>;
using TSXcharfile = TSXexperimentfile<2>;
using TSXseqfile = TSXexperimentfile<3>;
using TSXpairfile = TSXexperimentfile<4>;
using TSXgel2dfile = TSXexperimentfile<5>;
