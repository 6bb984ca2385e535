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
    int readchunk(TSXbinfile& file, const char* tag) override;

private:
    std::int32_t readtype(TSXbinfile& file, Reading& reading);
    int readrecords(TSXbinfile& file);
    int readsinglerecord(TSXbinfile& file);
    void readrecord(TSXbinfile& file, std::size_t i);

    const FileClass& format;
    Reading typereading = Reading::good; // of the file's own type
};

class TSXgelfile : public TSXdeffile {
public:
    TSXgelfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
        : TSXdeffile(owner, holder, basename, 1) {}
};

class TSXcharfile : public TSXdeffile {
public:
    TSXcharfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
        : TSXdeffile(owner, holder, basename, 2) {}
};

class TSXseqfile : public TSXdeffile {
public:
    TSXseqfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
        : TSXdeffile(owner, holder, basename, 3) {}
};

class TSXpairfile : public TSXdeffile {
public:
    TSXpairfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
        : TSXdeffile(owner, holder, basename, 4) {}
};

class TSXgel2dfile : public TSXdeffile {
public:
    TSXgel2dfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
        : TSXdeffile(owner, holder, basename, 5) {}
};
