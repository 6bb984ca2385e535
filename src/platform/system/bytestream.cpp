#include "platform/system/bytestream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/tree.h"

namespace {

constexpr std::size_t bufferSize = 65536;          // most files are read in one or two pieces
constexpr std::int64_t largestContent = INT32_MAX; // of a new file, whose offsets are 32-bit numbers

int failures = 0;

// One piece of the file: its size, 0 at the end, below 0 on failure.
ssize_t readPiece(int file, char* bytes, std::size_t count, std::int64_t position) {
    const ssize_t size = retryInterrupted([&] { return pread(file, bytes, count, position); });
    if (size < 0)
        SetLastError(failureFrom(errno).number);
    return size;
}

} // namespace

ByteStream::~ByteStream() {
    close();
}

void ByteStream::reset(OpenMode mode) {
    mode_ = mode;
    position_ = 0;
    atEnd_ = false;
    readFailure_ = 0;
    incomplete_ = false;
    buffer_.clear();
    bufferStart_ = 0;
    filled_ = 0;
}

bool ByteStream::open(const char* path, OpenMode mode, Links links) {
    Tree tree;
    std::string name;
    return !isOpen() && succeeded(tree.openDirectoryOf(path, name)) && open(tree, name, mode, links);
}

bool ByteStream::open(Tree& tree, std::string_view name, OpenMode mode, Links links) {
    if (isOpen())
        return false;
    reset(mode);
    if (mode != OpenMode::read)
        return writing_ = succeeded(openToFill(tree, name, links));
    File file;
    const bool opened = succeeded(tree.openToRead(name, file, links));
    opened_ = file.opened();
    file_ = file.release();
    return opened;
}

// One that is there is emptied, but none that has a second name, under which it may be one of the data.
Failure ByteStream::openToFill(Tree& tree, std::string_view name, Links links) {
    if (mode_ == OpenMode::create)
        return tree.make(name, *(made_ = std::make_unique<NewFile>()), Rights::usual);
    Failure failure = tree.openToWrite(name, emptied_, links);
    if (failure.number == ERROR_FILE_NOT_FOUND)
        return tree.make(name, *(made_ = std::make_unique<NewFile>()), Rights::usual);
    EntryState state;
    if (!failure)
        failure = emptied_.entry(state);
    if (!failure && state.names > 1)
        failure = {ERROR_ALREADY_EXISTS};
    return failure ? failure : emptied_.cut(0);
}

bool ByteStream::openMemory() {
    reset(OpenMode::write);
    return writing_ = true;
}

std::string ByteStream::takeMemory() {
    writing_ = false;
    return std::exchange(buffer_, {});
}

bool ByteStream::close() {
    if (!isOpen())
        return true;
    if (!writing_) {
        File read(std::exchange(file_, -1));
        return succeeded(read.close());
    }
    writing_ = false;
    const bool stored = !incomplete_ && succeeded(store());
    if (!stored)
        countFailedWrite();
    made_.reset();
    emptied_ = File();
    buffer_.clear();
    filled_ = 0;
    return stored;
}

// Writes the whole content, and gives a new file its name.
Failure ByteStream::store() {
    if (made_ == nullptr) {
        const Failure written = emptied_.write(0, buffer_);
        const Failure closed = emptied_.close();
        return written ? written : closed;
    }
    Failure failure = made_->file.write(0, buffer_);
    if (!failure)
        failure = made_->keep(mode_ == OpenMode::create);
    const Failure closed = made_->file.close();
    return failure ? failure : closed;
}

// Reads the piece of the file at the position.
bool ByteStream::fill() {
    if (opened_.size > 0 &&
        position_ >= opened_.size) { // as the open told, which the end of a read has to bear out
        atEnd_ = true;
        return false;
    }
    buffer_.resize(bufferSize);
    const ssize_t size = readPiece(file_, buffer_.data(), buffer_.size(), position_);
    filled_ = static_cast<std::size_t>(std::max<ssize_t>(size, 0));
    bufferStart_ = position_;
    if (size < 0)
        return failRead();
    if (size == 0 && position_ < opened_.size) { // not damaged, but cut off meanwhile, or by a failing server
        SetLastError(ERROR_FILE_INVALID);
        return failRead();
    }
    if (size == 0) {
        atEnd_ = true;
        return false;
    }
    return true;
}

// Keeps the reason of a failed read, which is the last error. Always false.
bool ByteStream::failRead() {
    if (readFailure_ == 0)
        readFailure_ = GetLastError();
    return false;
}

FileState ByteStream::state() {
    if (injectedFault(DiskOperation::read)) {
        failRead();
        return {};
    }
    struct stat state = {};
    if (isOpen() && fstat(file_, &state) == 0)
        return stateFrom(state);
    SetLastError(failureFrom(isOpen() ? errno : EBADF).number);
    failRead();
    return {};
}

std::size_t ByteStream::read(void* bytes, std::size_t count) {
    if (!isOpen() || writing_ || count == 0)
        return 0;
    if (injectedFault(DiskOperation::read)) {
        failRead();
        return 0;
    }
    std::size_t done = 0;
    while (done < count && (buffered() > 0 || fill())) {
        const std::size_t size = std::min(buffered(), count - done);
        std::memcpy(static_cast<char*>(bytes) + done, ahead().data(), size);
        position_ += static_cast<std::int64_t>(size);
        done += size;
    }
    return done;
}

// Nothing goes out before the close.
std::size_t ByteStream::write(const void* bytes, std::size_t count) {
    if (count == 0)
        return 0;
    constexpr auto largest = static_cast<std::size_t>(largestContent);
    const auto start = static_cast<std::size_t>(position_);
    const bool good = writing_ && !injectedFault(DiskOperation::write);
    if (good && count <= largest && start <= largest - count) {
        if (start > buffer_.size())
            buffer_.resize(start);
        buffer_.replace(start, count, static_cast<const char*>(bytes), count);
        position_ += static_cast<std::int64_t>(count);
        return count;
    }
    if (good)
        SetLastError(ERROR_DISK_FULL);
    countFailedWrite();
    incomplete_ = true;
    return 0;
}

bool ByteStream::seek(std::int64_t position) {
    if (!isOpen() || position < 0)
        return false;
    if (injectedFault(DiskOperation::seek))
        return failRead();
    position_ = position;
    atEnd_ = false;
    return true;
}

bool ByteStream::skip(std::int64_t count) {
    if (!isOpen() || writing_ || count < 0)
        return false;
    if (injectedFault(DiskOperation::read))
        return failRead();
    const std::int64_t bufferEnd = bufferStart_ + static_cast<std::int64_t>(filled_);
    if (count <= bufferEnd - position_) { // the file is known to go as far as the buffer
        position_ += count;
        return true;
    }
    struct stat state = {};
    if (fstat(file_, &state) != 0) {
        SetLastError(failureFrom(errno).number);
        return failRead();
    }
    const std::int64_t left = std::max<std::int64_t>(state.st_size - position_, 0);
    position_ += std::min(count, left);
    atEnd_ = atEnd_ || count > left;
    return count <= left;
}

int failedWrites() {
    return failures;
}

void countFailedWrite() {
    ++failures;
}
