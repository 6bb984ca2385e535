#include "platform/system/person.h"

#include <climits>
#include <filesystem>
#include <system_error>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/tree.h"
#include "platform/system/ways.h"

namespace {

bool isThere(const std::string& path) {
    struct stat state = {};
    return lstat(path.c_str(), &state) == 0;
}

Failure syncDirectoryOf(const std::string& path) {
    Tree directory;
    std::string name;
    const Failure failure = directory.openDirectoryOf(path, name);
    return failure ? failure : directory.syncDirectoryOf(name);
}

} // namespace

std::uint32_t currentuser() {
    return geteuid();
}

std::string username(std::uint32_t user) {
    const passwd* entry = getpwuid(user);
    return entry != nullptr ? entry->pw_name : "user " + std::to_string(user);
}

std::string hostname() {
    char name[HOST_NAME_MAX + 1] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

std::string resolvePath(std::string_view path) {
    std::string given = withSlashes(path);
    const std::string start = given.starts_with('/') ? "/" : ".";
    Ways ways;
    Spot spot;
    if (given.empty() || isThere(given) || ways.hold(start))
        return given;
    return ways.find(given, Links::unfollowed, spot) && spot.spelled.empty()
               ? given
               : (start == "/" ? start : "") + spot.spelled;
}

bool pathExists(std::string_view path) {
    return isThere(resolvePath(path));
}

std::string GetCurrentDirectoryA() {
    std::error_code failure;
    return std::filesystem::current_path(failure).string();
}

int SetCurrentDirectoryA(const char* path) {
    return succeeded(answer(chdir(resolvePath(path).c_str()))) ? 1 : 0;
}

Failure makePrivateDirectories(const std::string& path) {
    constexpr mode_t ownerOnly = 0700;
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        Failure failure = faultOf(DiskOperation::makeDirectory);
        if (!failure)
            failure = mkdir(part.c_str(), ownerOnly) == 0 ? syncDirectoryOf(part)
                                                          : answer(access(part.c_str(), X_OK));
        if (failure || end == std::string::npos)
            return failure;
    }
}
