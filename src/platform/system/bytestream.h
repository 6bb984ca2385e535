// A buffered byte stream on one plain file of a tree. Only a plain file, or a link to one, opens; nothing
// else ever blocks an open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/system/file.h"
#include "platform/system/filestate.h"

class Tree;

enum class OpenMode {
    read,   // an existing file
    write,  // a new file, which appears with its content at close, or an existing one emptied, but none that
            // has a second name
    create, // a new file, which appears at close when its whole content is on the disk; an entry of that name
            // is never replaced
};

class ByteStream {
public:
    ByteStream() = default;
    ByteStream(ByteStream&&) = default;
    ByteStream& operator=(ByteStream&&) = default;
    ~ByteStream();

    // Opens the file. False when it can't be had; GetLastError then tells why. Only on a closed stream.
    bool open(Tree& tree, std::string_view name, OpenMode mode, Links links = Links::followed);
    bool open(const char* path, OpenMode mode, Links links = Links::followed); // in a tree of its directory
    // Writes what is still held back and closes. False when that could not be written.
    bool close();
    bool isOpen() const { return file_.isOpen() || writing_; }
    // Without a file: what is written is taken, which closes.
    bool openMemory();
    std::string takeMemory();

    // The bytes that came, from 0 to count; fewer than asked only at the end of the file or after a failure.
    std::size_t read(void* bytes, std::size_t count);
    // All bytes, or none after a failure, of which the close tells too.
    std::size_t write(const void* bytes, std::size_t count);
    // Of the open file; that of no file, and a failure of reading, where the disk does not tell.
    FileState state();
    const FileState& opened() const { return file_.opened(); } // how it stood at the open
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
        return offset < buffer_.size() ? std::string_view(buffer_).substr(offset) : std::string_view();
    }
    void pass(std::size_t count) { position_ += static_cast<std::int64_t>(count); }
    std::int64_t tell() const { return position_; }
    // True once a read or skip has asked for more than there was, until the next seek.
    bool atEnd() const { return atEnd_; }
    // The number of the first failure of the disk while reading since the open; 0 if there was none. The end
    // of the file is no failure.
    std::uint32_t readFailure() const { return readFailure_; }

private:
    Failure openToFill(Tree& tree, std::string_view name, Links links);
    Failure store();
    Failure flush();
    bool fill();
    bool good(Failure failure);

    File file_; // that is read, or emptied to be filled
    std::unique_ptr<NewFile> made_;
    bool writing_ = false;
    Failure writeFailure_; // the first one: the content must not appear
    OpenMode mode_ = OpenMode::read;
    std::int64_t position_ = 0;
    bool atEnd_ = false;
    std::uint32_t readFailure_ = 0;
    std::string buffer_;           // a piece of the file; without one the whole content
    std::int64_t bufferStart_ = 0; // where in the file its first byte stands
};
