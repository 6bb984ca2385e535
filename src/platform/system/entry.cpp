#include "platform/system/entry.h"

#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/system/posix.h"

namespace {

constexpr mode_t permissionBits = 07777;
constexpr mode_t withoutOwnersRights = 0777;

bool failed(const std::string& path) {
    setLastErrorFromErrno(errno, path);
    return false;
}

bool answered(int result, const std::string& path) {
    return result == 0 || failed(path);
}

EntryState::Kind kindOf(mode_t mode) {
    if (S_ISREG(mode))
        return EntryState::plain;
    if (S_ISDIR(mode))
        return EntryState::directory;
    return S_ISLNK(mode) ? EntryState::symbolic : EntryState::other;
}

Moment momentOf(const timespec& time) {
    return {time.tv_sec, static_cast<std::uint32_t>(time.tv_nsec)};
}

bool setTimes(const std::string& path, const EntryState& state, int flags) {
    const timespec times[] = {{state.read.seconds, static_cast<long>(state.read.nanoseconds)},
                              {state.changed.seconds, static_cast<long>(state.changed.nanoseconds)}};
    return answered(utimensat(AT_FDCWD, path.c_str(), times, flags), path);
}

// A list of names, or a value, whose size is asked first. Where it changes in between, that is a failure.
template <class Call> bool readSized(Call call, std::string& bytes, const std::string& path) {
    const ssize_t size = call(nullptr, 0);
    bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return size == 0 || (size > 0 && call(bytes.data(), bytes.size()) == size) || failed(path);
}

} // namespace

bool readEntry(const std::string& path, OfLink links, EntryState& state) {
    state = EntryState();
    struct stat found = {};
    if (injectedFault(DiskOperation::read))
        return false;
    if ((links == OfLink::target ? stat(path.c_str(), &found) : lstat(path.c_str(), &found)) != 0)
        return errno == ENOENT || failed(path);
    state.kind = kindOf(found.st_mode);
    state.permissions = found.st_mode & permissionBits;
    state.owner = found.st_uid;
    state.group = found.st_gid;
    state.device = found.st_dev;
    state.inode = found.st_ino;
    state.names = found.st_nlink;
    state.size = found.st_size;
    state.read = momentOf(found.st_atim);
    state.changed = momentOf(found.st_mtim);
    return true;
}

bool readAttributes(const std::string& path, std::vector<Attribute>& attributes) {
    attributes.clear();
    if (injectedFault(DiskOperation::read))
        return false;
    std::string names;
    const auto list = [&](char* bytes, std::size_t size) { return llistxattr(path.c_str(), bytes, size); };
    if (!readSized(list, names, path))
        return errno == EOPNOTSUPP; // the file system has none
    for (std::size_t at = 0; at < names.size(); at += attributes.back().name.size() + 1) {
        Attribute& attribute = attributes.emplace_back(Attribute{names.c_str() + at, ""});
        const auto get = [&](char* bytes, std::size_t size) {
            return lgetxattr(path.c_str(), attribute.name.c_str(), bytes, size);
        };
        if (!readSized(get, attribute.value, path))
            return false;
    }
    return true;
}

bool readLink(const std::string& path, std::string& target) {
    target.resize(PATH_MAX);
    const ssize_t size =
        injectedFault(DiskOperation::read) ? -1 : readlink(path.c_str(), target.data(), PATH_MAX);
    target.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return size >= 0 || failed(path);
}

bool readFullPath(const std::string& path, std::string& full) {
    char* found = realpath(path.c_str(), nullptr);
    if (found == nullptr)
        return failed(path);
    full = found;
    std::free(found);
    return true;
}

bool giveState(const std::string& path, const EntryState& state, const std::vector<Attribute>& attributes) {
    if (injectedFault(DiskOperation::write))
        return false;
    // The owner comes first, since a change of it takes rights away. A file of another owner than it had must
    // not run with that one's rights.
    bool all = answered(lchown(path.c_str(), state.owner, state.group), path);
    const std::uint32_t permissions = all ? state.permissions : state.permissions & withoutOwnersRights;
    if (state.kind != EntryState::symbolic)
        all = answered(chmod(path.c_str(), permissions), path) && all;
    for (const auto& [name, value] : attributes)
        all = answered(lsetxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0), path) && all;
    return setTimes(path, state, AT_SYMLINK_NOFOLLOW) && all;
}

bool giveTimes(const std::string& path, const EntryState& state) {
    return !injectedFault(DiskOperation::write) && setTimes(path, state, 0);
}

bool makeLink(const std::string& path, const std::string& target) {
    return !injectedFault(DiskOperation::link) && answered(symlink(target.c_str(), path.c_str()), path);
}

bool addName(const std::string& path, const std::string& existing) {
    return !injectedFault(DiskOperation::link) && answered(link(existing.c_str(), path.c_str()), path);
}

bool makePrivateDirectories(const std::string& path) {
    constexpr mode_t ownerOnly = 0700;
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (injectedFault(DiskOperation::makeDirectory))
            return false;
        const bool made = mkdir(part.c_str(), ownerOnly) == 0;
        if (made ? !syncEntry(directoryOf(part)) : access(part.c_str(), X_OK) != 0)
            return !made && failed(part);
        if (end == std::string::npos)
            return true;
    }
}

bool removeDirectory(const std::string& path) {
    return !injectedFault(DiskOperation::remove) && answered(rmdir(path.c_str()), path);
}

bool cutFile(const std::string& path, std::int64_t size) {
    return !injectedFault(DiskOperation::write) && answered(truncate(path.c_str(), size), path);
}

bool syncEntry(const std::string& path) {
    if (injectedFault(DiskOperation::sync))
        return false;
    const int file = retryInterrupted([&] { return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); });
    if (file < 0)
        return failed(path);
    // A file system that knows no such sync of a directory has nothing more to give.
    const bool done = fsync(file) == 0 || errno == EINVAL || failed(path);
    close(file);
    return done;
}

PrivateFiles::PrivateFiles() : usual_(umask(077)) {}

PrivateFiles::~PrivateFiles() {
    umask(static_cast<mode_t>(usual_));
}
