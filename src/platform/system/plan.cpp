#include "platform/system/plan.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/listing.h"
#include "platform/system/path.h"
#include "platform/system/posix.h"

namespace {

namespace fs = std::filesystem;

// Entries by the one path of their directory that goes through no link.
std::set<fs::path> gone;
std::set<fs::path> made;

fs::path placeOf(const std::string& path) {
    std::error_code failure;
    const fs::path given(path);
    const fs::path named = given.has_filename() ? given : given.parent_path();
    const fs::path directory = fs::weakly_canonical(fs::absolute(named, failure).parent_path(), failure);
    return directory / named.filename();
}

// A failure that the disk would give.
bool refuse(int systemError, const std::string& path) {
    setLastErrorFromErrno(systemError, path);
    return false;
}

unsigned obstacleAt(const std::string& path) {
    const std::string directory = directoryOf(path);
    if (countsAsDirectory(directory) || faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0)
        return ERROR_SUCCESS;
    setLastErrorFromErrno(errno, path);
    return GetLastError();
}

} // namespace

bool planRemoval(const char* path) {
    const std::string resolved = resolvePath(path);
    struct stat state = {};
    if (injectedFault(DiskOperation::remove))
        return false;
    if (lstat(resolved.c_str(), &state) != 0 || countsAsGone(resolved))
        return refuse(ENOENT, resolved);
    if (S_ISDIR(state.st_mode))
        return refuse(EISDIR, resolved);
    if (obstacleAt(resolved) != ERROR_SUCCESS)
        return false;
    gone.insert(placeOf(resolved));
    forgetListings();
    return true;
}

bool planDirectory(const char* path) {
    if (injectedFault(DiskOperation::makeDirectory))
        return false;
    const std::string resolved = resolvePath(path);
    if (pathExists(resolved)) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return false;
    }
    if (obstacleAt(resolved) != ERROR_SUCCESS)
        return false;
    made.insert(placeOf(resolved));
    forgetListings();
    return true;
}

unsigned obstacleToChange(const char* path) {
    return obstacleAt(resolvePath(path));
}

void forgetPlan() {
    gone.clear();
    made.clear();
    forgetListings();
}

bool countsAsGone(const std::string& path) {
    return !gone.empty() && gone.count(placeOf(path)) != 0;
}

bool countsAsDirectory(const std::string& path) {
    return !made.empty() && made.count(placeOf(path)) != 0;
}

void applyPlan(const std::string& directory, std::vector<std::string>& names) {
    if (gone.empty() && made.empty())
        return;
    const fs::path place = placeOf(directory + "/entry").parent_path();
    names.erase(std::remove_if(names.begin(), names.end(),
                               [&](const std::string& name) { return gone.count(place / name) != 0; }),
                names.end());
    for (const fs::path& entry : made)
        if (entry.parent_path() == place)
            names.push_back(entry.filename());
}
