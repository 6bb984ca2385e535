#include "platform/system/newfile.h"

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "platform/system/posix.h"

namespace {

std::string descriptorPath(int file) {
    return "/proc/self/fd/" + std::to_string(file);
}

// A file that has no name yet; -1 where it could not be given one later.
int makeUnnamed(const std::string& directory) {
    const int file =
        retryInterrupted([&] { return open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666); });
    if (file < 0 || access(descriptorPath(file).c_str(), F_OK) == 0)
        return file;
    close(file);
    return -1;
}

// No search of the program finds it, and no other process makes one of that name.
std::string temporaryName(const std::string& path) {
    const std::size_t last = path.rfind('/') + 1; // 0 where there is no directory
    return path.substr(0, last) + "." + path.substr(last) + "." + std::to_string(getpid()) + ".new";
}

bool link(const std::string& from, const std::string& to) {
    return linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// Not every file system can rename without replacing; one that can't may know links.
bool renameWithoutReplacing(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    return errno != EEXIST && link(from, to) && unlink(from.c_str()) == 0;
}

} // namespace

int makeNewFile(const std::string& path, bool hidden, std::string& name) {
    name.clear();
    const bool canBeMade = !path.empty() && path.back() != '/';
    int file = canBeMade ? makeUnnamed(directoryOf(path)) : -1;
    if (file >= 0)
        return file;
    const std::string made = hidden ? temporaryName(path) : path;
    file = retryInterrupted(
        [&] { return open(made.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOCTTY, 0666); });
    if (file < 0)
        setLastErrorFromErrno(errno, path);
    else
        name = made;
    return file;
}

bool nameNewFile(int file, const std::string& path, std::string& name) {
    if (name == path)
        return true;
    if (injectedFault(DiskOperation::link))
        return false;
    if (!(name.empty() ? link(descriptorPath(file), path) : renameWithoutReplacing(name, path))) {
        setLastErrorFromErrno(errno, path);
        return false;
    }
    name = path;
    return true;
}
