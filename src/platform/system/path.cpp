#include "platform/system/path.h"

#include <sys/stat.h>

#include "platform/system/ways.h"

namespace {

bool isThere(const std::string& path) {
    struct stat state = {};
    return lstat(path.c_str(), &state) == 0;
}

} // namespace

std::string resolvePath(std::string_view path) {
    std::string given = withSlashes(path);
    const std::string start = given.starts_with('/') ? "/" : ".";
    Ways ways;
    Spot spot;
    if (given.empty() || isThere(given) || ways.hold(start))
        return given;
    return ways.find(given, Links::refused, spot) && spot.spelled.empty()
               ? given
               : (start == "/" ? start : "") + spot.spelled;
}

bool pathExists(std::string_view path) {
    return isThere(resolvePath(path));
}
