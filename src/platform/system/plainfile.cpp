#include "platform/system/plainfile.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/system/entry.h"
#include "platform/system/path.h"
#include "platform/system/posix.h"

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
    if (good && closed)
        return true;
    countFailedWrite();
    return false;
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

bool syncDirectoryOf(const char* path) {
    return syncEntry(directoryOf(resolvePath(path)));
}
