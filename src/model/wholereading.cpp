#include "model/wholereading.h"

#include <algorithm>
#include <string>

#include "files/binfile.h"
#include "platform/system/errors.h"

namespace {

using TakeChunk = std::function<Chunk(TSXbinfile& file, const char* tag)>;

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

WholeReading readonce(Tree& tree, const char* path, const char* header, const TakeChunk& take,
                      bool& changed) {
    TSXbinfile file;
    if (file.openread(tree, path) != 1)
        return {WholeReading::unopened, {}, GetLastError()};
    WholeReading reading{WholeReading::wrongheader, file.stateatopen()};
    if (hasheader(file, header))
        reading.outcome = readchunks(file, take);
    const FileState now = file.state();
    changed = now != FileState() && !now.isUnchanged(reading.file);
    reading.failure = changed ? ERROR_FILE_INVALID : file.readfailure();
    file.close();
    return reading;
}

} // namespace

WholeReading readwhole(Tree& tree, const char* path, const char* header, const std::function<void()>& forget,
                       const TakeChunk& take) {
    WholeReading reading;
    bool again = true;
    for (int attempt = 1; attempt <= 2 && again; ++attempt) {
        again = false;
        forget();
        reading = readonce(tree, path, header, take, again);
    }
    return reading;
}
