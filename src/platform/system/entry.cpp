#include "platform/system/entry.h"

#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/tree.h"

namespace {

constexpr mode_t permissionBits = 07777;

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

Failure syncDirectoryOf(const std::string& path) {
    Tree place;
    std::string name;
    const Failure failure = place.openDirectoryOf(path, name);
    return failure ? failure : place.syncDirectoryOf(name);
}

} // namespace

EntryState entryFrom(const struct stat& found) {
    return {kindOf(found.st_mode),
            found.st_mode & permissionBits,
            found.st_uid,
            found.st_gid,
            found.st_dev,
            found.st_ino,
            found.st_nlink,
            found.st_size,
            momentOf(found.st_atim),
            momentOf(found.st_mtim)};
}

FileState stateFrom(const struct stat& state) {
    return {{state.st_dev, state.st_ino},
            state.st_size,
            state.st_mtim.tv_sec * std::int64_t{1000000000} + state.st_mtim.tv_nsec};
}

bool readFullPath(const std::string& path, std::string& full) {
    char* found = realpath(path.c_str(), nullptr);
    if (found == nullptr)
        return succeeded(failureFrom(errno));
    full = found;
    std::free(found);
    return true;
}

bool makePrivateDirectories(const std::string& path) {
    constexpr mode_t ownerOnly = 0700;
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (injectedFault(DiskOperation::makeDirectory))
            return false;
        const bool made = mkdir(part.c_str(), ownerOnly) == 0;
        const Failure failure = made ? syncDirectoryOf(part) : answer(access(part.c_str(), X_OK));
        if (failure || end == std::string::npos)
            return succeeded(failure);
    }
}
