#include "platform/system/hold.h"

#include <fcntl.h>
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

} // namespace

HANDLE CreateFileA(const char* path) {
    if (injectedFault(DiskOperation::open))
        return INVALID_HANDLE_VALUE;
    const int file = openPlainFile(resolvePath(path), O_WRONLY, true);
    if (file < 0)
        return INVALID_HANDLE_VALUE;
    if (lockWhole(file))
        return file;
    close(file);
    return INVALID_HANDLE_VALUE;
}

void CloseHandle(HANDLE handle) {
    if (handle != INVALID_HANDLE_VALUE)
        close(handle);
}
