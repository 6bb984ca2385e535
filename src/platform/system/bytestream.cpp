#include "platform/system/bytestream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/system/posix.h"
#include "platform/system/tree.h"

namespace {

constexpr std::int64_t bufferSize = 65536; // most files are read in one or two pieces

} // namespace

ByteStream::~ByteStream() {
    close();
}

bool ByteStream::open(const char* path, OpenMode mode, Links links) {
    Tree tree;
    std::string name;
    return !isOpen() && succeeded(tree.openDirectoryOf(path, name)) && open(tree, name, mode, links);
}

bool ByteStream::open(Tree& tree, std::string_view name, OpenMode mode, Links links) {
    if (isOpen())
        return false;
    *this = ByteStream();
    mode_ = mode;
    if (mode == OpenMode::read)
        return succeeded(tree.openToRead(name, file_, links));
    writing_ = succeeded(openToFill(tree, name, links));
    return writing_;
}

// One that is there is emptied, but none that has a second name, under which it may be one of the data.
Failure ByteStream::openToFill(Tree& tree, std::string_view name, Links links) {
    Failure failure = {ERROR_FILE_NOT_FOUND};
    if (mode_ == OpenMode::write)
        failure = tree.openToWrite(name, file_, links);
    if (failure.number == ERROR_FILE_NOT_FOUND)
        return tree.make(name, *(made_ = std::make_unique<NewFile>()), Rights::usual);
    if (!failure && file_.opened().names > 1)
        failure = {ERROR_ALREADY_EXISTS};
    failure = failure ? failure : file_.cut(0);
    if (failure)
        file_ = File();
    return failure;
}

bool ByteStream::openMemory() {
    *this = ByteStream();
    return writing_ = true;
}

std::string ByteStream::takeMemory() {
    writing_ = false;
    return std::exchange(buffer_, {});
}

bool ByteStream::close() {
    const Failure failure = writing_ ? store() : Failure();
    const Failure closed = file_.isOpen() ? file_.close() : Failure();
    made_.reset();
    writing_ = false;
    buffer_.clear();
    return succeeded(failure ? failure : closed);
}

// Writes the rest of the content, and gives a new file its name.
Failure ByteStream::store() {
    Failure failure = flush();
    if (failure || made_ == nullptr)
        return failure;
    failure = made_->keep(mode_ == OpenMode::create);
    const Failure closed = made_->file.close();
    return failure ? failure : closed;
}

// Writes the piece that is held back; another one begins at the position. After a failure nothing goes out.
Failure ByteStream::flush() {
    if (!writeFailure_ && !buffer_.empty())
        writeFailure_ = (made_ ? made_->file : file_).write(bufferStart_, buffer_);
    buffer_.clear();
    bufferStart_ = position_;
    return writeFailure_;
}

// Keeps the reason of the first failure to read.
bool ByteStream::good(Failure failure) {
    if (readFailure_ == 0)
        readFailure_ = failure.number;
    return succeeded(failure);
}

// Reads the piece of the file at the position, up to the size that the open told, which the end has to bear
// out; of a file without a size what it gives.
bool ByteStream::fill() {
    const std::int64_t size = opened().size;
    if (size > 0 && position_ >= size) {
        atEnd_ = true;
        return false;
    }
    const auto count =
        static_cast<std::size_t>(size > 0 ? std::min(size - position_, bufferSize) : bufferSize);
    bufferStart_ = position_;
    if (!good(file_.read(position_, count, buffer_)))
        return false;
    if (buffer_.empty() && size > 0) // not damaged, but cut off meanwhile, or by a failing server
        return good({ERROR_FILE_INVALID});
    atEnd_ = atEnd_ || buffer_.empty();
    return !buffer_.empty();
}

FileState ByteStream::state() {
    FileState now;
    good(file_.state(now));
    return now;
}

std::size_t ByteStream::read(void* bytes, std::size_t count) {
    std::size_t done = 0;
    while (done < count && file_.isOpen() && !writing_ && (!ahead().empty() || fill())) {
        const std::size_t size = std::min(ahead().size(), count - done);
        std::memcpy(static_cast<char*>(bytes) + done, ahead().data(), size);
        pass(size);
        done += size;
    }
    return done;
}

std::size_t ByteStream::write(const void* bytes, std::size_t count) {
    const bool apart = static_cast<std::uint64_t>(position_ - bufferStart_) > buffer_.size();
    const bool full = (made_ || file_.isOpen()) && buffer_.size() >= bufferSize;
    if (!writing_ || !succeeded(apart || full ? flush() : writeFailure_))
        return 0;
    const auto at = static_cast<std::size_t>(position_ - bufferStart_);
    buffer_.replace(at, count, static_cast<const char*>(bytes), count);
    pass(count);
    return count;
}

bool ByteStream::seek(std::int64_t position) {
    if (!isOpen() || position < 0)
        return false;
    position_ = position;
    atEnd_ = false;
    return true;
}

bool ByteStream::skip(std::int64_t count) {
    if (!file_.isOpen() || writing_ || count < 0)
        return false;
    if (count <= static_cast<std::int64_t>(ahead().size())) { // the file is known to go as far
        position_ += count;
        return true;
    }
    FileState now;
    if (!good(file_.state(now)))
        return false;
    const std::int64_t left = std::max<std::int64_t>(now.size - position_, 0);
    position_ += std::min(count, left);
    atEnd_ = atEnd_ || count > left;
    return count <= left;
}
