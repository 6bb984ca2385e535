#include "platform/system/file.h"

#include <algorithm>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/ways.h"

namespace {

// A write beyond the size that the process is allowed is then an error and not its death.
void refuseOversizedWrites() {
    [[maybe_unused]] static const auto before = std::signal(SIGXFSZ, SIG_IGN);
}

// A call that answers 0 on success and sets errno.
template <class Call> Failure made(DiskOperation operation, const Call& call) {
    const Failure fault = faultOf(operation);
    return fault ? fault : answer(retryInterrupted(call));
}

struct flock wholeFile(short kind) {
    struct flock whole = {};
    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    return whole;
}

// Where a file system has no such locks, that is not a failure of the disk.
Failure lockAnswer(int result) {
    if (result == 0)
        return {};
    return {errno == EAGAIN || errno == EACCES ? ERROR_SHARING_VIOLATION : ERROR_NOT_SUPPORTED};
}

} // namespace

File::~File() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

File& File::operator=(File&& other) noexcept {
    const int before = std::exchange(descriptor_, other.release());
    opened_ = other.opened_;
    if (before >= 0)
        ::close(before);
    return *this;
}

Failure File::state(FileState& state) const {
    struct stat found = {};
    const Failure failure = made(DiskOperation::read, [&] { return fstat(descriptor_, &found); });
    state = failure ? FileState() : stateFrom(found);
    return failure;
}

Failure File::entry(EntryState& state) const {
    struct stat found = {};
    const Failure failure = made(DiskOperation::read, [&] { return fstat(descriptor_, &found); });
    state = failure ? EntryState() : entryFrom(found);
    return failure;
}

Failure File::read(std::int64_t position, std::size_t count, std::string& bytes) const {
    Failure failure = faultOf(DiskOperation::read);
    bytes.resize(failure ? 0 : count);
    std::size_t done = 0;
    for (ssize_t size = 1; done < bytes.size() && size > 0; done += static_cast<std::size_t>(size)) {
        size = retryInterrupted([&] {
            return pread(descriptor_, &bytes[done], count - done, position + static_cast<std::int64_t>(done));
        });
        if (size < 0) {
            failure = failureFrom(errno);
            break;
        }
    }
    bytes.resize(done);
    return failure;
}

Failure File::write(std::int64_t position, std::string_view bytes) const {
    refuseOversizedWrites();
    if (const Failure fault = faultOf(DiskOperation::write))
        return fault;
    while (!bytes.empty()) {
        const ssize_t size =
            retryInterrupted([&] { return pwrite(descriptor_, bytes.data(), bytes.size(), position); });
        if (size <= 0)
            return failureFrom(size == 0 ? ENOSPC : errno);
        bytes.remove_prefix(static_cast<std::size_t>(size));
        position += size;
    }
    return {};
}

Failure File::cut(std::int64_t size) const {
    refuseOversizedWrites();
    return made(DiskOperation::write, [&] { return ftruncate(descriptor_, size); });
}

Failure File::permit(std::uint32_t permissions) const {
    return made(DiskOperation::write, [&] { return fchmod(descriptor_, permissions); });
}

Failure File::sync() const {
    return made(DiskOperation::sync, [&] { return fsync(descriptor_); });
}

Failure File::close() {
    const Failure fault = faultOf(DiskOperation::close);
    const int descriptor = release();
    const bool closed = ::close(descriptor) == 0 || errno == EINTR; // closed then too
    return fault || closed ? fault : failureFrom(errno);
}

// A file system that can't tell has no holes.
Failure File::data(std::int64_t position, std::int64_t& start, std::int64_t& end) const {
    struct stat found = {};
    const Failure failure = made(DiskOperation::seek, [&] { return fstat(descriptor_, &found); });
    if (failure)
        return failure;
    start = lseek(descriptor_, position, SEEK_DATA);
    if (start < 0)
        start = errno == ENXIO ? std::max<std::int64_t>(position, found.st_size) : position;
    end = start < found.st_size ? lseek(descriptor_, start, SEEK_HOLE) : start;
    if (end < 0)
        end = found.st_size;
    return {};
}

// The lock belongs to the open file, not to the process: another descriptor of the same process that is
// closed does not take it away.
Failure File::lock() const {
    const Failure fault = faultOf(DiskOperation::lock);
    struct flock whole = wholeFile(F_WRLCK);
    return fault ? fault
                 : lockAnswer(retryInterrupted([&] { return fcntl(descriptor_, F_OFD_SETLK, &whole); }));
}

// One for reading meets those for writing alone.
Failure File::lockedForWriting(bool& locked) const {
    const Failure fault = faultOf(DiskOperation::lock);
    struct flock whole = wholeFile(F_RDLCK);
    const Failure failure =
        fault ? fault : lockAnswer(retryInterrupted([&] { return fcntl(descriptor_, F_OFD_GETLK, &whole); }));
    locked = !failure && whole.l_type != F_UNLCK;
    return failure;
}

Failure File::isPrivate(bool& is) const {
    struct stat found = {};
    const Failure failure = made(DiskOperation::read, [&] { return fstat(descriptor_, &found); });
    is = !failure && found.st_uid == geteuid() && (found.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return failure;
}

NewFile::~NewFile() {
    if (!kept_ && !standing_.empty())
        unlinkat(directory_->descriptor, standing_.c_str(), 0);
}

Failure NewFile::keep(bool sync) {
    if (const Failure failure = sync ? file.sync() : Failure())
        return failure;
    if (const Failure fault = faultOf(DiskOperation::link))
        return fault;
    const bool nameless = standing_.empty();
    const std::string from = nameless ? "/proc/self/fd/" + std::to_string(file.descriptor()) : standing_;
    if (standing_ != name_ &&
        linkat(nameless ? AT_FDCWD : directory_->descriptor, from.c_str(), directory_->descriptor,
               name_.c_str(), nameless ? AT_SYMLINK_FOLLOW : 0) != 0)
        return failureFrom(errno);
    kept_ = true;
    directory_->added(name_);
    return nameless || standing_ == name_ ? Failure()
                                          : answer(unlinkat(directory_->descriptor, from.c_str(), 0));
}
