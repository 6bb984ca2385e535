#include "model/deffile.h"

#include <cstring>

#include "files/binfile.h"
#include "model/database.h"
#include "reporting/log.h"

TSXdeffile::TSXdeffile(TSXdatabase& owner, TSXfilelist& holder, const char* basename, int fileclass)
    : TSXdatafile(owner, holder, basename, fileclass), format(fileclasses[fileclass]) {
    readfile();
}

void TSXdeffile::forget() {
    TSXdatafile::forget();
    typereading = Reading::good;
}

TSXdeffile::Chunk TSXdeffile::readchunk(TSXbinfile& file, const char* tag) {
    const bool typechunk = *format.typetag != '\0';
    if (typechunk && std::strcmp(tag, format.typetag) == 0) {
        typeid_ = readtype(file, typereading);
        return Chunk::taken;
    }
    if (std::strcmp(tag, format.recordtag) != 0)
        return Chunk::toleave;
    return format.counted ? readrecords(file) : readsinglerecord(file);
}

std::int32_t TSXdeffile::readtype(TSXbinfile& file, Reading& reading) {
    std::string_view typetext;
    reading = readkeyfield(file, typetext);
    return database.addexptype(classid, typetext);
}

TSXdeffile::Chunk TSXdeffile::readrecords(TSXbinfile& file) {
    if (!readcount(file))
        return Chunk::refused;
    for (std::size_t i = 1; i < keys.size(); ++i)
        readrecord(file, i);
    return Chunk::taken;
}

// The one class without a count: its chunk is left by its end, since there is more behind the record.
TSXdeffile::Chunk TSXdeffile::readsinglerecord(TSXbinfile& file) {
    maketable(1);
    readrecord(file, 1);
    typeid_ = keytypes[1];
    return Chunk::toleave;
}

void TSXdeffile::readrecord(TSXbinfile& file, std::size_t i) {
    readkey(file, i);
    Reading typeread = typereading;
    keytypes[i] = format.recordtypes ? readtype(file, typeread) : typeid_;
    if (keyreading[i] == Reading::good)
        keyreading[i] = typeread;
    for (int n = 0; n < format.recordintegers; ++n) {
        std::int32_t discarded;
        file.readint(discarded);
    }
    if (logEnabled == 1)
        logLine(Text<100>().format("%s%s | %d", format.recordindent, keys[i].data(), keytypes[i]));
}
