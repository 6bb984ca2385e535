#include "model/wholereading.h"

#include <algorithm>
#include <string>

#include "files/binfile.h"
#include "platform/system/errors.h"

namespace {

// These stand in the file as they are; all others as a counted string.
constexpr std::string_view rawheaders[] = {"TX-COMP-v1.0", "TX-BUNDLE-v01.0", "TX-LIB-v1.0"};

bool hasheader(TSXbinfile& file, std::string_view header) {
    std::string found;
    if (std::ranges::find(rawheaders, header) != std::end(rawheaders)) {
        found.assign(header.size(), ' ');
        file.blockread(found.data(), static_cast<int>(found.size()));
    } else {
        file.readstring(found, headercapacity);
    }
    return found == header;
}

WholeReading::Outcome readchunks(TSXbinfile& file, const TakeChunk& take) {
    char tag[tagBufferSize];
    int result = 1;
    while (result != -1 && file.iseof() == 0) {
        result = file.readtag(tag);
        if (result != 1)
            break;
        const Chunk chunk = take(file, tag);
        if (chunk == Chunk::unusable)
            return WholeReading::unusable;
        if (chunk == Chunk::toleave)
            result = file.skipchunk();
    }
    return result == -1 ? WholeReading::wrongtag : WholeReading::complete;
}

WholeReading readonce(const WholeFile& wanted, const TakeChunk& take) {
    TSXbinfile file;
    if (file.openread(wanted.tree, wanted.path) != 1)
        return {WholeReading::unopened, {}, GetLastError()};
    WholeReading reading{WholeReading::wrongheader, file.stateatopen()};
    if (hasheader(file, wanted.header))
        reading.outcome = readchunks(file, take);
    const FileState now = file.state();
    reading.changed = now != FileState() && !now.isUnchanged(reading.file);
    reading.failure = reading.changed ? ERROR_FILE_INVALID : file.readfailure();
    file.close();
    return reading;
}

} // namespace

WholeReading readwhole(const WholeFile& wanted, const TakeChunk& take, const std::function<void()>& forget) {
    forget();
    WholeReading reading = readonce(wanted, take);
    if (reading.changed) {
        forget();
        reading = readonce(wanted, take);
    }
    return reading;
}
