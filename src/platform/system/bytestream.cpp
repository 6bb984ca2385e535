#include "platform/system/bytestream.h"

#include <algorithm>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/path.h"
#include "platform/system/posix.h"

namespace {

constexpr std::size_t bufferSize = 65536;          // most files are read in one or two pieces
constexpr std::int64_t largestContent = INT32_MAX; // of a new file, whose offsets are 32-bit numbers

int failures = 0;

bool isReadable(OpenMode mode) {
    return mode == OpenMode::read || mode == OpenMode::update;
}

int flagsOf(OpenMode mode) {
    switch (mode) {
    case OpenMode::read:
        return O_RDONLY;
    case OpenMode::write:
        return O_WRONLY;
    case OpenMode::update:
        return O_RDWR;
    case OpenMode::append:
        return O_WRONLY | O_APPEND;
    }
    return O_RDONLY;
}

// One piece of the file: its size, 0 at the end, below 0 on failure.
ssize_t readPiece(int file, char* bytes, std::size_t count, std::int64_t position) {
    const ssize_t size = retryInterrupted([&] { return pread(file, bytes, count, position); });
    if (size < 0)
        setLastErrorFromErrno(errno, "");
    return size;
}

// What stands at a position, less where the file ends. False on failure.
bool readWhole(int file, std::string& bytes, std::size_t count, std::int64_t position) {
    bytes.resize(count);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t size =
            readPiece(file, bytes.data() + done, count - done, position + static_cast<std::int64_t>(done));
        if (size < 0)
            return false;
        if (size == 0)
            break;
        done += static_cast<std::size_t>(size);
    }
    bytes.resize(done);
    return true;
}

std::size_t writeAt(int file, const char* bytes, std::size_t count, std::int64_t position) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t size = retryInterrupted([&] {
            return pwrite(file, bytes + done, count - done, position + static_cast<std::int64_t>(done));
        });
        if (size <= 0) {
            setLastErrorFromErrno(size == 0 ? ENOSPC : errno, "");
            break;
        }
        done += static_cast<std::size_t>(size);
    }
    return done;
}

// Undoes the first bytes of a write of which the rest could not be written. The reason of that failure stays
// the last error, whatever becomes of the undoing.
void putBack(int file, const std::string& old, std::size_t done, std::int64_t position,
             std::int64_t oldSize) {
    const std::uint32_t reason = GetLastError();
    writeAt(file, old.data(), std::min(done, old.size()), position);
    if (done > old.size()) {
        [[maybe_unused]] const int undone = ftruncate(file, oldSize);
    }
    SetLastError(reason);
}

bool hasName(int file) {
    struct stat state = {};
    return fstat(file, &state) == 0 && state.st_nlink > 0;
}

std::string descriptorPath(int file) {
    return "/proc/self/fd/" + std::to_string(file);
}

// A file that stands in the directory but has no name there yet; -1 where it could not be given one later.
int makeUnnamed(const std::string& directory) {
    const int file =
        retryInterrupted([&] { return open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666); });
    if (file < 0 || access(descriptorPath(file).c_str(), F_OK) == 0)
        return file;
    close(file);
    return -1;
}

} // namespace

ByteStream::~ByteStream() {
    close();
}

bool ByteStream::open(const char* path, OpenMode mode, Links links) {
    if (isOpen() || injectedFault(DiskOperation::open))
        return false;
    mode_ = mode;
    position_ = 0;
    atEnd_ = false;
    readFailure_ = 0;
    incomplete_ = false;
    buffer_.clear();
    bufferStart_ = 0;
    newPath_.clear();
    std::string resolved;
    if (!findPath(path, resolved))
        return false;
    return mode == OpenMode::write && isMissing(resolved) ? openNew(resolved) : openExisting(resolved, links);
}

bool ByteStream::openExisting(const std::string& path, Links links) {
    const int refusal = links == Links::refused ? O_NOFOLLOW : 0;
    file_ = openPlainFile(path, flagsOf(mode_) | refusal, mode_ == OpenMode::append);
    if (!isOpen())
        return false;
    if (mode_ == OpenMode::append)
        position_ = std::max<std::int64_t>(lseek(file_, 0, SEEK_END), 0);
    if (mode_ != OpenMode::write || ftruncate(file_, 0) == 0)
        return true;
    setLastErrorFromErrno(errno, path);
    ::close(file_);
    file_ = -1;
    return false;
}

bool ByteStream::openNew(const std::string& path) {
    const bool canBeMade = !path.empty() && path.back() != '/';
    file_ = canBeMade ? makeUnnamed(directoryOf(path)) : -1;
    if (!isOpen())
        file_ = retryInterrupted(
            [&] { return ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC | O_NOCTTY, 0666); });
    if (!isOpen()) {
        setLastErrorFromErrno(errno, path);
        return false;
    }
    newPath_ = path;
    return true;
}

bool ByteStream::close() {
    if (!isOpen())
        return true;
    bool good = mode_ != OpenMode::write || publish();
    const bool made = !newPath_.empty() && hasName(file_);
    // A file system of another machine may say only now that it is full.
    if (::close(file_) != 0 && errno != EINTR) {
        setLastErrorFromErrno(errno, "");
        good = false;
    }
    file_ = -1;
    buffer_.clear();
    if (!good) {
        ++failures;
        if (made)
            unlink(newPath_.c_str());
    }
    return good;
}

// Writes the whole content, and gives a file without a name its own.
bool ByteStream::publish() {
    if (incomplete_ || injectedFault(DiskOperation::write))
        return false;
    if (writeAt(file_, buffer_.data(), buffer_.size(), 0) < buffer_.size())
        return false;
    if (newPath_.empty() || hasName(file_))
        return true;
    if (linkat(AT_FDCWD, descriptorPath(file_).c_str(), AT_FDCWD, newPath_.c_str(), AT_SYMLINK_FOLLOW) == 0)
        return true;
    setLastErrorFromErrno(errno, newPath_);
    return false;
}

// The bytes of the buffer from the position on.
std::size_t ByteStream::buffered() const {
    const std::int64_t offset = position_ - bufferStart_;
    const auto size = static_cast<std::int64_t>(buffer_.size());
    return offset >= 0 && offset < size ? static_cast<std::size_t>(size - offset) : 0;
}

// Reads the piece of the file at the position.
bool ByteStream::fill() {
    buffer_.resize(bufferSize);
    const ssize_t size = readPiece(file_, buffer_.data(), buffer_.size(), position_);
    buffer_.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    bufferStart_ = position_;
    if (size < 0)
        return failRead();
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

FileIdentity ByteStream::identity() {
    struct stat state = {};
    if (isOpen() && fstat(file_, &state) == 0)
        return {state.st_dev, state.st_ino};
    setLastErrorFromErrno(isOpen() ? errno : EBADF, "");
    failRead();
    return {};
}

std::size_t ByteStream::read(void* bytes, std::size_t count) {
    if (!isOpen() || !isReadable(mode_) || count == 0)
        return 0;
    if (injectedFault(DiskOperation::read)) {
        failRead();
        return 0;
    }
    std::size_t done = 0;
    while (done < count && (buffered() > 0 || fill())) {
        const std::size_t size = std::min(buffered(), count - done);
        std::memcpy(static_cast<char*>(bytes) + done, buffer_.data() + (position_ - bufferStart_), size);
        position_ += static_cast<std::int64_t>(size);
        done += size;
    }
    return done;
}

std::size_t ByteStream::write(const void* bytes, std::size_t count) {
    std::size_t done = 0;
    if (count > 0 && isOpen() && mode_ != OpenMode::read && !injectedFault(DiskOperation::write)) {
        const char* from = static_cast<const char*>(bytes);
        done = mode_ == OpenMode::write    ? holdBack(from, count)
               : mode_ == OpenMode::update ? overwrite(from, count)
                                           : append(from, count);
    }
    if (done < count) {
        ++failures;
        incomplete_ = true;
    }
    return done;
}

std::size_t ByteStream::holdBack(const char* bytes, std::size_t count) {
    if (count > static_cast<std::size_t>(largestContent) ||
        position_ > largestContent - static_cast<std::int64_t>(count)) {
        SetLastError(ERROR_DISK_FULL);
        return 0;
    }
    const auto start = static_cast<std::size_t>(position_);
    buffer_.resize(std::max(buffer_.size(), start + count));
    std::memcpy(buffer_.data() + start, bytes, count);
    position_ += static_cast<std::int64_t>(count);
    return count;
}

// All or nothing: what stood there is read first, so that it can be put back.
std::size_t ByteStream::overwrite(const char* bytes, std::size_t count) {
    std::string old;
    struct stat state = {};
    if (!readWhole(file_, old, count, position_))
        return 0;
    if (fstat(file_, &state) != 0) {
        setLastErrorFromErrno(errno, "");
        return 0;
    }
    buffer_.clear();
    const std::size_t done = writeAt(file_, bytes, count, position_);
    if (done < count) {
        putBack(file_, old, done, position_, state.st_size);
        return 0;
    }
    position_ += static_cast<std::int64_t>(count);
    return count;
}

std::size_t ByteStream::append(const char* bytes, std::size_t count) {
    const ssize_t size = retryInterrupted([&] { return ::write(file_, bytes, count); });
    if (size < 0) {
        setLastErrorFromErrno(errno, "");
        return 0;
    }
    position_ += size;
    return static_cast<std::size_t>(size);
}

bool ByteStream::seek(std::int64_t position) {
    if (!isOpen() || mode_ == OpenMode::append || position < 0)
        return false;
    if (injectedFault(DiskOperation::seek))
        return failRead();
    position_ = position;
    atEnd_ = false;
    return true;
}

bool ByteStream::skip(std::int64_t count) {
    if (!isOpen() || !isReadable(mode_) || count < 0)
        return false;
    if (injectedFault(DiskOperation::read))
        return failRead();
    const std::int64_t bufferEnd = bufferStart_ + static_cast<std::int64_t>(buffer_.size());
    if (count <= bufferEnd - position_) { // the file is known to go as far as the buffer
        position_ += count;
        return true;
    }
    struct stat state = {};
    if (fstat(file_, &state) != 0) {
        setLastErrorFromErrno(errno, "");
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

bool appendToFile(const std::string& path, std::string_view bytes) {
    if (injectedFault(DiskOperation::open))
        return false;
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const int file = retryInterrupted([&] { return open(path.c_str(), flags, 0666); });
    if (file < 0) {
        setLastErrorFromErrno(errno, path);
        return false;
    }
    bool good = !injectedFault(DiskOperation::write);
    if (good) {
        const ssize_t size = retryInterrupted([&] { return write(file, bytes.data(), bytes.size()); });
        good = size == static_cast<ssize_t>(bytes.size());
        if (!good)
            setLastErrorFromErrno(size < 0 ? errno : ENOSPC, path);
    }
    const bool closed = close(file) == 0 || errno == EINTR;
    if (!closed)
        setLastErrorFromErrno(errno, path);
    failures += good && closed ? 0 : 1;
    return good && closed;
}

bool removeFile(const char* path) {
    if (injectedFault(DiskOperation::remove))
        return false;
    std::string resolved;
    if (!findPath(path, resolved))
        return false;
    if (unlink(resolved.c_str()) == 0)
        return true;
    setLastErrorFromErrno(errno, resolved);
    return false;
}

void flushToDisk() {
    sync();
}
