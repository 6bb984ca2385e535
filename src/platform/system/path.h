// How a path finds its file. A backslash is a separator. A path is looked up as it stands first; where a
// component does not exist, the first entry of that directory that equals it ignoring the case of ASCII
// letters is taken.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The path of the entry that the given path names, a dangling link included. What does not exist keeps the
// name that was given, in the directory found so far.
std::string resolvePath(std::string_view path);

// The same, and false where a directory on the way could not be looked into, so that what the path names is
// unknown; GetLastError then tells why.
bool findPath(std::string_view path, std::string& found);

// Whether an entry of any kind stands under that name, ignoring case, as far as can be known.
bool pathExists(std::string_view path);

// The names in a directory in the platform's order: ascending, ASCII small letters counted as capitals, names
// equal so by their plain bytes. "." and ".." are left out. Empty when the directory can't be read, and
// GetLastError then tells why.
std::vector<std::string> directoryEntries(const std::string& directory);

// Whether a path leads to something inside of a directory, whatever links it goes through. False also where
// that can't be known; GetLastError then tells why, else it is 0.
bool leadsInto(std::string_view path, std::string_view directory);

// Whether no other entry of its directory equals the path's last component ignoring case. False also where
// that can't be known; GetLastError then tells why, 183 where there is one.
bool standsAlone(std::string_view path);

// While one lives the names of a directory in which one was missing are read once, and what other programs
// do there since is not seen, so that many new files cost one reading and not one each. At most one at a
// time.
class OneLook {
public:
    OneLook();
    OneLook(const OneLook&) = delete;
    OneLook& operator=(const OneLook&) = delete;
    ~OneLook();
    static void renew(); // from here on the next look counts
};
