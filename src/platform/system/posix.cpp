#include "platform/system/posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int failedOpen(int systemError, const std::string& path) {
    setLastErrorFromErrno(systemError, path);
    return -1;
}

} // namespace

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool isMissing(const std::string& path) {
    struct stat state = {};
    return lstat(path.c_str(), &state) != 0 && errno == ENOENT;
}

int openPlainFile(const std::string& path, int flags, bool create) {
    struct stat state = {};
    if (stat(path.c_str(), &state) != 0) {
        if (!create || errno != ENOENT)
            return failedOpen(errno, path);
        flags |= O_CREAT | O_NOFOLLOW; // a dangling link must not make what it points to
    } else if (!S_ISREG(state.st_mode)) {
        // Looked at before the open, which alone can have effects on a pipe or a device.
        return failedOpen(EISDIR, path);
    }
    const int file =
        retryInterrupted([&] { return open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666); });
    if (file < 0)
        return failedOpen(errno, path);
    const int obstacle = fstat(file, &state) != 0 ? errno : S_ISREG(state.st_mode) ? 0 : EISDIR;
    if (obstacle != 0) {
        close(file);
        return failedOpen(obstacle, path);
    }
    return file;
}
