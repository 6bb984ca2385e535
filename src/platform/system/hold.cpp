#include "platform/system/hold.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/path.h"
#include "platform/system/posix.h"

namespace {

// The lock belongs to the open file, not to the process: another descriptor of the same process that is
// closed does not take it away.
bool lockWhole(int file) {
    if (injectedFault(DiskOperation::lock))
        return false;
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    if (retryInterrupted([&] { return fcntl(file, F_OFD_SETLK, &whole); }) == 0)
        return true;
    SetLastError(errno == EAGAIN || errno == EACCES ? ERROR_SHARING_VIOLATION : ERROR_NOT_SUPPORTED);
    return false;
}

// Who may make files in the directory may hold this one: otherwise the file's maker would keep all others out
// for good. What the system does not allow stays as it is.
void shareAsDirectory(int file, const std::string& directory) {
    struct stat place = {};
    struct stat made = {};
    if (stat(directory.c_str(), &place) != 0 || fstat(file, &made) != 0)
        return;
    if (made.st_gid != place.st_gid && fchown(file, static_cast<uid_t>(-1), place.st_gid) != 0)
        place.st_mode &= ~mode_t{S_IWGRP};
    [[maybe_unused]] const int changed =
        fchmod(file, (made.st_mode & 07777) | (place.st_mode & (S_IWGRP | S_IWOTH)));
}

} // namespace

HANDLE CreateFileA(const char* path) {
    if (injectedFault(DiskOperation::open))
        return INVALID_HANDLE_VALUE;
    std::string resolved;
    if (!findPath(path, resolved))
        return INVALID_HANDLE_VALUE;
    const bool made = isMissing(resolved);
    const int file = openPlainFile(resolved, O_WRONLY, true);
    if (file < 0)
        return INVALID_HANDLE_VALUE;
    if (made)
        shareAsDirectory(file, directoryOf(resolved));
    if (lockWhole(file))
        return file;
    close(file);
    return INVALID_HANDLE_VALUE;
}

void CloseHandle(HANDLE handle) {
    if (handle != INVALID_HANDLE_VALUE)
        close(handle);
}
