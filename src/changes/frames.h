// The frames of an undo file: kind, length, checksum and bytes, one after the other. The checksum is over
// where the frame stands too, so that none is taken for another.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "changes/content.h"
#include "platform/system/file.h"

enum class FrameKind : std::uint8_t { keys = 1, deletion, making, head, times, piece, groupend };

struct Frame {
    FrameKind kind = FrameKind::head;
    std::string bytes;
    std::uint64_t end = 0; // offset behind it in the file
};

// Reads frames from a position up to an end.
class Frames {
public:
    Frames(const File& file, std::uint64_t start, std::uint64_t end)
        : file_(file), position_(start), end_(end) {}
    bool atend() const { return position_ >= end_; }
    Failure next(Frame& frame); // ERROR_INVALID_DATA where no sound one stands here

private:
    const File& file_;
    std::uint64_t position_, end_;
};

// Visits the pieces that stand one after the other from a position on.
Failure visitpieces(const File& file, std::uint64_t start, std::uint64_t end,
                    const FileContent::Visit& visit);

// Appends frames to a file, until one fails.
class FrameWriter {
public:
    FrameWriter(const File& file, std::int64_t start) : file_(file), position_(start) {}
    void add(FrameKind kind, std::string_view bytes);
    Failure end(std::int64_t& position);         // gives the position behind the last frame
    Failure failure() const { return failure_; } // the first so far

private:
    void flush();

    const File& file_;
    std::int64_t position_;
    std::string buffer_;
    Failure failure_;
};
