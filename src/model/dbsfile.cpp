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
    TSXbinfile file;
    const Opening opened = openwithheader(file);
    if (opened == Opening::failed)
        valid = 1;
    if (opened == Opening::good)
        readchunks(file);
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

std::string TSXdbsfile::writewhole() {
    TSXbinfile file;
    if (file.opennew(path) != 1)
        return unwritten();
    file.writestring(fileclasses[classid].header);
    file.writetag("FLD");
    file.writeint(0);
    file.endtag();
    file.writetag(fileclasses[classid].recordtag);
    file.writeint(keycount);
    std::vector<std::int32_t> places(keys.size());
    for (std::size_t i = 1; i < keys.size(); ++i) {
        places[i] = file.tell();
        file.writefield(keys[i], keycapacity);
    }
    file.endtag();
    if (file.close() == 0) // any write that failed keeps the file from appearing
        return unwritten();
    keypos = places;
    keydirty.assign(keys.size(), 0);
    keysondisk.clear();
    onread = stateOf(path);
    ondisk = 1;
    return {};
}
