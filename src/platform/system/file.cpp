#include "platform/system/file.h"

#include <algorithm>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/ways.h"

namespace {

constexpr mode_t setIds = S_ISUID | S_ISGID;
constexpr const char* accessList = "system.posix_acl_access";

// A write beyond the size that the process is allowed is then an error and not its death.
void failOversizedWrites() {
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

Failure firstOf(Failure first, Failure next) {
    return first ? first : next;
}

// A list of names, or a value, whose size is asked first. Where it changes in between, that is a failure.
template <class Call> Failure readSized(Call call, std::string& bytes) {
    const ssize_t size = call(nullptr, 0);
    bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return size == 0 || (size > 0 && call(bytes.data(), bytes.size()) == size) ? Failure()
                                                                               : failureFrom(errno);
}

// A file system may have none.
Failure attributesOf(int file, std::vector<Attribute>& attributes) {
    attributes.clear();
    std::string names;
    const auto list = [&](char* to, std::size_t size) { return flistxattr(file, to, size); };
    if (const Failure failure = readSized(list, names))
        return failure.number == ERROR_NOT_SUPPORTED ? Failure() : failure;
    for (std::size_t at = 0; at < names.size(); at += attributes.back().name.size() + 1) {
        Attribute& attribute = attributes.emplace_back(Attribute{names.c_str() + at, ""});
        const auto get = [&](char* to, std::size_t size) {
            return fgetxattr(file, attribute.name.c_str(), to, size);
        };
        if (const Failure unread = readSized(get, attribute.value))
            return unread;
    }
    return {};
}

const Attribute* findAttribute(const std::vector<Attribute>& attributes, std::string_view name) {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const Attribute& attribute) { return attribute.name == name; });
    return found == attributes.end() ? nullptr : &*found;
}

// Lists of rights that came from the directory are taken away again.
Failure giveAttributes(int file, const std::vector<Attribute>& wanted) {
    std::vector<Attribute> present;
    Failure failure = attributesOf(file, present);
    for (const auto& [name, value] : wanted) {
        const Attribute* old = findAttribute(present, name);
        if (!name.starts_with("security.") && (old == nullptr || old->value != value))
            failure = firstOf(failure, answer(fsetxattr(file, name.c_str(), value.data(), value.size(), 0)));
    }
    for (const char* list : {accessList, defaultList})
        if (findAttribute(present, list) != nullptr && findAttribute(wanted, list) == nullptr)
            failure = firstOf(failure, answer(fremovexattr(file, list)));
    return failure;
}

Failure giveOwner(int entry, const struct stat& found, const FileState& state) {
    if (found.st_uid == state.owner && found.st_gid == state.group)
        return {};
    return answer(fchownat(entry, "", state.owner, state.group, AT_EMPTY_PATH));
}

FileState::Kind kindOf(mode_t mode) {
    if (S_ISREG(mode))
        return FileState::plain;
    if (S_ISDIR(mode))
        return FileState::directory;
    return S_ISLNK(mode) ? FileState::symbolic : FileState::other;
}

Moment momentOf(const timespec& time) {
    return {time.tv_sec, static_cast<std::uint32_t>(time.tv_nsec)};
}

} // namespace

FileState stateFrom(const struct stat& found) {
    return {{{found.st_dev, found.st_ino}, found.st_size, momentOf(found.st_mtim)},
            kindOf(found.st_mode),
            found.st_mode & 07777,
            found.st_uid,
            found.st_gid,
            found.st_nlink,
            momentOf(found.st_atim)};
}

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
    struct stat found = {};
    const bool ended = !failure && done < bytes.size(); // which the size has to bear out
    if (ended && fstat(descriptor_, &found) == 0 &&
        position + static_cast<std::int64_t>(done) < found.st_size)
        failure = {ERROR_FILE_INVALID};
    bytes.resize(done);
    return failure;
}

Failure File::write(std::int64_t position, std::string_view bytes) const {
    failOversizedWrites();
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
    failOversizedWrites();
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

// A link has none that could be given back.
Failure File::attributes(std::vector<Attribute>& attributes) const {
    const Failure fault = faultOf(DiskOperation::read);
    attributes.clear();
    return fault || opened_.kind == FileState::symbolic ? fault : attributesOf(descriptor_, attributes);
}

// A second name of somebody else's file is none that was made here.
Failure File::give(const FileState& state, const std::vector<Attribute>& attributes) const {
    struct stat found = {};
    if (const Failure failure = made(DiskOperation::write, [&] { return fstat(descriptor_, &found); }))
        return failure;
    if (S_ISREG(found.st_mode) && found.st_nlink > 1 && found.st_uid != state.owner)
        return {ERROR_ACCESS_DENIED};
    const bool isLink = S_ISLNK(found.st_mode);
    Failure failure = isLink ? Failure() : giveAttributes(descriptor_, attributes);
    failure = firstOf(failure, giveOwner(descriptor_, found, state));
    // A directory's set-group bit gives nobody rights.
    const mode_t permissions = state.permissions & ~(S_ISDIR(found.st_mode) ? mode_t{S_ISUID} : setIds);
    if (!isLink && (found.st_mode & 07777) != permissions)
        failure = firstOf(failure, answer(fchmod(descriptor_, permissions)));
    return firstOf(failure, giveTimes(state.read, state.changed));
}

Failure File::giveTimes(const Moment& read, const Moment& changed) const {
    const timespec times[] = {{read.seconds, static_cast<long>(read.nanoseconds)},
                              {changed.seconds, static_cast<long>(changed.nanoseconds)}};
    return made(DiskOperation::write, [&] { return utimensat(descriptor_, "", times, AT_EMPTY_PATH); });
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
