// A buffered byte stream on one plain file: the only way in which the program reads and writes the content of
// files. Paths follow the rules of path.h. Only a plain file, or a link to one, opens; nothing else ever
// blocks an open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/filestate.h"

enum class OpenMode {
    read,   // an existing file
    write,  // a new file, which appears with its content at close, or an existing one emptied, but none that
            // has a second name
    update, // an existing file, read and written in place; each write reaches the system at once, in one
            // piece
    create, // a new file, which appears at close when its whole content is on the disk and was read back;
            // an entry of that name is never replaced
    recreate, // the same, also beside a name that differs only in case, as one that has been there before
};

// Whether a link at the end of a path is followed to the file that it points to, or refused.
enum class Links { followed, refused };

class ByteStream {
public:
    ByteStream() = default;
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;
    ~ByteStream();

    // Opens the file. False when it can't be had; GetLastError then tells why. Only on a closed stream.
    bool open(const char* path, OpenMode mode, Links links = Links::followed);
    // Writes what is still held back and closes. False when that could not be written.
    bool close();
    bool isOpen() const { return file_ >= 0; }

    // The bytes that came, from 0 to count; fewer than asked only at the end of the file or after a failure.
    std::size_t read(void* bytes, std::size_t count);
    // The bytes that were accepted, from 0 to count.
    std::size_t write(const void* bytes, std::size_t count);
    // Puts what was written in place on the disk itself, and waits for it. What is read afterwards comes from
    // the system anew.
    bool sync();
    // Of the open file; that of no file, and a failure of reading, where the disk does not tell.
    FileState state();
    // Moves to a position from the start of the file, also behind its end. False for a negative one, or a
    // failure.
    bool seek(std::int64_t position);
    // Passes over bytes as a read would, in a time that does not depend on their number. False if the end
    // came first.
    bool skip(std::int64_t count);
    // The bytes from the position on that an earlier read has brought into memory, until the next operation;
    // and passes over that many of them, which can't fail.
    std::string_view ahead() const {
        const auto offset = static_cast<std::uint64_t>(position_ - bufferStart_);
        return offset < filled_ ? std::string_view(buffer_.data() + offset, filled_ - offset)
                                : std::string_view();
    }
    void pass(std::size_t count) { position_ += static_cast<std::int64_t>(count); }
    std::int64_t tell() const { return position_; }
    // True once a read or skip has asked for more than there was, until the next seek.
    bool atEnd() const { return atEnd_; }
    // The number of the first failure of the disk while reading since the open; 0 if there was none. The end
    // of the file is no failure.
    std::uint32_t readFailure() const { return readFailure_; }

private:
    bool openExisting(const std::string& path, Links links);
    bool publish();
    bool putOnDisk() const;
    bool fill();
    bool failRead();
    std::size_t buffered() const { return ahead().size(); }
    std::size_t holdBack(const char* bytes, std::size_t count);
    std::size_t overwrite(const char* bytes, std::size_t count);
    bool makesNew() const { return mode_ == OpenMode::write || mode_ == OpenMode::create; }
    bool standing(std::string& bytes, std::size_t count) const;

    int file_ = -1;
    OpenMode mode_ = OpenMode::read;
    std::int64_t position_ = 0;
    bool atEnd_ = false;
    std::uint32_t readFailure_ = 0;
    bool incomplete_ = false;      // a new file: a write was not accepted, so the content must not appear
    std::string buffer_;           // read modes: a piece of the file first; a new file: the whole content
    std::size_t filled_ = 0;       // of that piece
    std::int64_t end_ = -1;        // of a file that is only read, where it was asked for
    std::string replaced_;         // what stood where the last write in place went
    std::int64_t bufferStart_ = 0; // where in the file the buffer's first byte stands
    std::string newPath_;          // the name that a file made by this stream is to have; else empty
    std::string newName_;          // the one it has meanwhile, if any
};

// How many writes of the process have failed, a failed close or flush counted as one.
int failedWrites();
