#include "platform/system/bytestream.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/newfile.h"
#include "platform/system/path.h"
#include "platform/system/plan.h"
#include "platform/system/posix.h"

namespace {

constexpr std::size_t bufferSize = 65536;          // most files are read in one or two pieces
constexpr std::int64_t largestContent = INT32_MAX; // of a new file, whose offsets are 32-bit numbers

int failures = 0;

bool isReadable(OpenMode mode) {
    return mode == OpenMode::read || mode == OpenMode::update;
}

int flagsOf(OpenMode mode) {
    return mode == OpenMode::read ? O_RDONLY : mode == OpenMode::update ? O_RDWR : O_WRONLY;
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

// A call that answers 0 on success and sets errno.
template <class Call> bool succeeds(DiskOperation operation, const Call& call) {
    if (injectedFault(operation))
        return false;
    if (retryInterrupted(call) == 0)
        return true;
    setLastErrorFromErrno(errno, "");
    return false;
}

// A write beyond the size that the process is allowed is then an error and not its death.
void refuseOversizedWrites() {
    [[maybe_unused]] static const auto before = std::signal(SIGXFSZ, SIG_IGN);
}

// Empties a file, but none that has a second name, under which it may be one of the data. The system's error
// number of a failure, 0 if there is none.
int emptied(int file) {
    struct stat state = {};
    if (fstat(file, &state) != 0)
        return errno;
    if (state.st_nlink > 1)
        return EEXIST;
    return ftruncate(file, 0) == 0 ? 0 : errno;
}

} // namespace

ByteStream::~ByteStream() {
    close();
}

bool ByteStream::open(const char* path, OpenMode mode, Links links) {
    if (isOpen() || injectedFault(DiskOperation::open))
        return false;
    mode_ = mode == OpenMode::recreate ? OpenMode::create : mode;
    position_ = 0;
    atEnd_ = false;
    readFailure_ = 0;
    incomplete_ = false;
    buffer_.clear();
    filled_ = 0;
    end_ = -1;
    newPath_.clear();
    if (mode != OpenMode::read)
        refuseOversizedWrites();
    std::string resolved = path;
    if (mode != OpenMode::recreate && !findPath(path, resolved))
        return false;
    const bool missing = countsAsGone(resolved) || (makesNew() && isMissing(resolved));
    if (missing && !makesNew()) {
        setLastErrorFromErrno(ENOENT, resolved);
        return false;
    }
    if (mode_ == OpenMode::create && !missing) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return false;
    }
    if (!makesNew() || !missing)
        return openExisting(resolved, links);
    file_ = makeNewFile(resolved, mode_ == OpenMode::create, newName_);
    if (isOpen())
        newPath_ = resolved;
    return isOpen();
}

bool ByteStream::openExisting(const std::string& path, Links links) {
    const int refusal = links == Links::refused ? O_NOFOLLOW : 0;
    file_ = openPlainFile(path, flagsOf(mode_) | refusal, false);
    if (!isOpen())
        return false;
    const int failure = mode_ == OpenMode::write ? emptied(file_) : 0;
    if (failure == 0)
        return true;
    setLastErrorFromErrno(failure, path);
    ::close(file_);
    file_ = -1;
    return false;
}

bool ByteStream::close() {
    if (!isOpen())
        return true;
    bool good = !makesNew() || publish();
    // A file system of another machine may say only now that it is full.
    const bool closed = succeeds(DiskOperation::close, [this] {
        const int file = std::exchange(file_, -1);
        return file < 0 || ::close(file) == 0 || errno == EINTR ? 0 : -1;
    });
    if (isOpen()) // by an injected fault
        ::close(std::exchange(file_, -1));
    good = good && closed;
    buffer_.clear();
    filled_ = 0;
    if (!good) {
        countFailedWrite();
        if (!newPath_.empty() && !newName_.empty())
            unlink(newName_.c_str());
    }
    return good;
}

// Writes the whole content, and gives a file without a name its own.
bool ByteStream::publish() {
    if (incomplete_ || injectedFault(DiskOperation::write))
        return false;
    if (writeAt(file_, buffer_.data(), buffer_.size(), 0) < buffer_.size())
        return false;
    if (mode_ == OpenMode::create && !putOnDisk())
        return false;
    return newPath_.empty() || nameNewFile(file_, newPath_, newName_);
}

// A name must never lead to less than the whole content, whenever the machine stops.
bool ByteStream::putOnDisk() const {
    if (!succeeds(DiskOperation::sync, [this] { return fsync(file_); }))
        return false;
    std::string piece;
    std::size_t done = 0;
    do {
        if (!readWhole(file_, piece, bufferSize, static_cast<std::int64_t>(done)))
            return false;
        if (std::string_view(buffer_).substr(done, bufferSize) != piece) {
            SetLastError(ERROR_IO_DEVICE);
            return false;
        }
        done += piece.size();
    } while (!piece.empty());
    return true;
}

bool ByteStream::sync() {
    filled_ = 0;
    return succeeds(DiskOperation::sync, [this] { return fdatasync(file_); });
}

// Reads the piece of the file at the position.
bool ByteStream::fill() {
    buffer_.resize(bufferSize);
    const bool ended = position_ == end_; // which was told, and need not be asked again
    const ssize_t size = ended ? 0 : readPiece(file_, buffer_.data(), buffer_.size(), position_);
    filled_ = static_cast<std::size_t>(std::max<ssize_t>(size, 0));
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

FileState ByteStream::state() {
    if (injectedFault(DiskOperation::read)) {
        failRead();
        return {};
    }
    struct stat state = {};
    if (isOpen() && fstat(file_, &state) == 0) {
        if (mode_ == OpenMode::read &&
            state.st_size > 0) // a file that the system makes as it is read has none
            end_ = state.st_size;
        return stateFrom(state);
    }
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
        std::memcpy(static_cast<char*>(bytes) + done, ahead().data(), size);
        position_ += static_cast<std::int64_t>(size);
        done += size;
    }
    return done;
}

std::size_t ByteStream::write(const void* bytes, std::size_t count) {
    std::size_t done = 0;
    if (count > 0 && isOpen() && mode_ != OpenMode::read && !injectedFault(DiskOperation::write)) {
        const char* from = static_cast<const char*>(bytes);
        done = makesNew() ? holdBack(from, count) : overwrite(from, count);
    }
    if (done < count) {
        countFailedWrite();
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
    if (start > buffer_.size())
        buffer_.resize(start);
    buffer_.replace(start, count, bytes, count);
    position_ += static_cast<std::int64_t>(count);
    return count;
}

// What stands at the position, less where the file ends; from the buffer where it has that.
bool ByteStream::standing(std::string& bytes, std::size_t count) const {
    if (buffered() < count)
        return readWhole(file_, bytes, count, position_);
    bytes = ahead().substr(0, count);
    return true;
}

// All or nothing: what stood there is known first, so that it can be put back.
std::size_t ByteStream::overwrite(const char* bytes, std::size_t count) {
    struct stat state = {};
    if (!standing(replaced_, count))
        return 0;
    if (replaced_.size() < count && fstat(file_, &state) != 0) {
        setLastErrorFromErrno(errno, "");
        return 0;
    }
    const std::size_t done = writeAt(file_, bytes, count, position_);
    if (done < count) {
        filled_ = 0;
        putBack(file_, replaced_, done, position_, state.st_size);
        return 0;
    }
    if (buffered() >= count)
        std::memcpy(buffer_.data() + (position_ - bufferStart_), bytes, count);
    else
        filled_ = 0;
    position_ += static_cast<std::int64_t>(count);
    return count;
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
    if (!isOpen() || !isReadable(mode_) || count < 0)
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

void countFailedWrite() {
    ++failures;
}
