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
    bool changed = false;      // another program has written it meanwhile
};

struct WholeFile {
    Tree& tree;
    const char* path; // begins with that of the tree
    const char* header;
};

using TakeChunk = std::function<Chunk(TSXbinfile& file, const char* tag)>;

// Take is called for each chunk, whose body it may read, and forget before each reading.
WholeReading readwhole(
    const WholeFile& wanted, const TakeChunk& take, const std::function<void()>& forget = [] {});
