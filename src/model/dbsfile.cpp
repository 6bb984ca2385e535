#include "model/dbsfile.h"

#include <cstring>

#include "files/binfile.h"
#include "model/fileclass.h"
#include "reporting/log.h"

namespace {

constexpr int valuecapacity = 300; // of field names and field values, which are read only to be passed over

} // namespace

TSXdbsfile::TSXdbsfile(TSXdatabase& owner, TSXfilelist& holder, const char* basename)
    : TSXdatafile(owner, holder, basename, 0) {
    if (readfile() == Opening::failed)
        valid = 1;
}

void TSXdbsfile::forget() {
    TSXdatafile::forget();
    fieldcount = 0;
}

TSXdbsfile::Chunk TSXdbsfile::readchunk(TSXbinfile& file, const char* tag) {
    if (std::strcmp(tag, "FLD") == 0)
        return readfields(file);
    if (std::strcmp(tag, fileclasses[classid].recordtag) == 0)
        return readentries(file);
    return Chunk::toleave;
}

TSXdbsfile::Chunk TSXdbsfile::readfields(TSXbinfile& file) {
    fieldcount = 0;
    file.readint(fieldcount);
    file.passstrings(fieldcount, valuecapacity);
    return Chunk::taken;
}

TSXdbsfile::Chunk TSXdbsfile::readentries(TSXbinfile& file) {
    if (!readcount(file))
        return Chunk::refused;
    for (std::size_t i = 1; i < keys.size(); ++i) {
        readkey(file, i);
        file.passstrings(fieldcount, valuecapacity);
        if (logEnabled == 1)
            logLine(Text<100>().format("%s%s", fileclasses[classid].recordindent, keys[i].data()));
    }
    return Chunk::taken;
}
