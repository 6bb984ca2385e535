#include "platform/system/directory.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/path.h"
#include "platform/system/plan.h"
#include "platform/system/posix.h"

int CreateDirectoryA(const char* path) {
    if (injectedFault(DiskOperation::makeDirectory))
        return 0;
    std::string resolved;
    if (!findPath(path, resolved))
        return 0;
    if (mkdir(resolved.c_str(), 0777) == 0)
        return 1;
    setLastErrorFromErrno(errno, resolved);
    return 0;
}

// The entry "." is looked up by the very rule by which a directory is entered, and the process stays where it
// is.
bool canEnterDirectory(const char* path) {
    std::string resolved;
    if (!findPath(path, resolved))
        return false;
    const std::string inside = resolved + "/.";
    struct stat state = {};
    if (countsAsDirectory(resolved) || stat(inside.c_str(), &state) == 0)
        return true;
    setLastErrorFromErrno(errno, inside);
    return false;
}

bool mayBeDirectory(const char* path) {
    return canEnterDirectory(path) || !isAbsence(GetLastError());
}

std::string GetCurrentDirectoryA() {
    std::error_code failure;
    return std::filesystem::current_path(failure).string();
}

int SetCurrentDirectoryA(const char* path) {
    std::string resolved;
    if (!findPath(path, resolved))
        return 0;
    if (chdir(resolved.c_str()) == 0)
        return 1;
    setLastErrorFromErrno(errno, resolved);
    return 0;
}
