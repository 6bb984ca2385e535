// The reading of a file of the database from its header to its end, chunk by chunk. Once more where another
// program has written it meanwhile; what is written all the time can't be read.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/system/filestate.h"
#include "platform/system/tree.h"

class TSXbinfile;

// What follows a chunk: the next tag stands after what was taken; or the chunk is left by its end; or
// nothing, the file is unusable.
enum class Chunk : std::uint8_t { taken, toleave, unusable };

struct WholeReading {
    enum Outcome : std::uint8_t { unopened, wrongheader, wrongtag, unusable, complete } outcome = unopened;
    FileState file;            // as it stood; of no file where it was not opened
    std::uint32_t failure = 0; // the error number of the opening or of the disk
};

// The path begins with that of the tree. Forget is called before each reading, take for each chunk, whose
// body it may read.
WholeReading readwhole(Tree& tree, const char* path, const char* header, const std::function<void()>& forget,
                       const std::function<Chunk(TSXbinfile& file, const char* tag)>& take);
