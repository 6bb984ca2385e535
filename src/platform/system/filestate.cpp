#include "platform/system/filestate.h"

#include <sys/stat.h>

#include "platform/system/path.h"
#include "platform/system/posix.h"

FileState stateFrom(const struct stat& state) {
    return {{state.st_dev, state.st_ino},
            state.st_size,
            state.st_mtim.tv_sec * std::int64_t{1000000000} + state.st_mtim.tv_nsec};
}

FileState stateOf(const char* path) {
    struct stat state = {};
    const std::string found = resolvePath(path);
    if (stat(found.c_str(), &state) == 0)
        return stateFrom(state);
    setLastErrorFromErrno(errno, found);
    return {};
}
