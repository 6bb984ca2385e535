#include "platform/system/path.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

#include <dirent.h>
#include <sys/stat.h>
#include <time.h>

#include "platform/system/letters.h"
#include "platform/system/listing.h"
#include "platform/system/plan.h"
#include "platform/system/posix.h"

namespace {

unsigned char capitalLetter(char byte) {
    const unsigned char small = smallLetter(byte);
    return small >= 'a' && small <= 'z' ? static_cast<unsigned char>(small - ('a' - 'A')) : small;
}

// Below 0, 0 or above 0 in the order of the capitals; 0 for names that equal each other ignoring case.
int compareAsCapitals(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = capitalLetter(a[i]) - capitalLetter(b[i]);
        if (difference != 0)
            return difference;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool before(std::string_view a, std::string_view b) {
    return compareAsCapitals(a, b) < 0;
}

bool beforeInOrder(const std::string& a, const std::string& b) {
    const int order = compareAsCapitals(a, b);
    return order < 0 || (order == 0 && a < b);
}

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

std::int64_t nanoseconds(const timespec& moment) {
    return moment.tv_sec * std::int64_t{1000000000} + moment.tv_nsec;
}

// The names of a directory as they stood after its change at a moment.
struct Listing {
    std::int64_t changed = -1;
    std::vector<std::string> names;
};

// A change that lies this far back has a moment of its own: file systems tell moments apart by up to two
// seconds.
constexpr std::int64_t settlingTime = 2000000000;

// Whether what was read once counts as current for the time being.
bool onelook = false;

// By device and number of the directory. Not inside of a function: look-ups are made up to the very end of
// the process, by what was made before the first one.
std::map<std::pair<dev_t, ino_t>, Listing> kept;

// The names of a directory for the look-up of one. All are read once and kept while they are certainly
// current, since each file of a directory full of names in other letters looks its own name up. While they
// may not be, as each new file changes its directory, only those that may be meant are read. The moment is
// that of the last status change, because programs that copy trees set the modification time back. None where
// the directory can't be read, and GetLastError then tells why.
const std::vector<std::string>* namesForLookup(const std::string& directory, std::string_view wanted) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    struct stat state = {};
    if (stat(directory.c_str(), &state) != 0) {
        setLastErrorFromErrno(errno, directory);
        return nullptr;
    }

    Listing& listing = kept[{state.st_dev, state.st_ino}];
    const std::int64_t changed = nanoseconds(state.st_ctim);
    if (listing.changed == changed || (onelook && listing.changed != -1))
        return &listing.names;
    listing.changed = -1;
    const bool keeping = onelook || changed + settlingTime < nanoseconds(now);
    if (!readNames(directory, listing.names, keeping ? std::string_view() : wanted))
        return nullptr;
    if (keeping)
        listing.changed = changed;
    return &listing.names;
}

enum class Presence { there, absent, unknown };

Presence presenceOf(const std::string& path) {
    struct stat state = {};
    if (lstat(path.c_str(), &state) == 0)
        return countsAsGone(path) ? Presence::absent : Presence::there;
    const int systemError = errno;
    if (countsAsDirectory(path))
        return Presence::there;
    if (systemError == ENOENT || systemError == ENOTDIR)
        return Presence::absent;
    setLastErrorFromErrno(systemError, path);
    return Presence::unknown;
}

// Finds a component in the directory found so far, which ends with its separator or is empty. What does not
// exist keeps its name. False where that can't be known.
bool findComponent(const std::string& directory, std::string& component, bool& exists) {
    const Presence presence = presenceOf(directory + component);
    exists = presence == Presence::there;
    if (presence != Presence::absent)
        return exists;
    const std::vector<std::string>* names = namesForLookup(directory.empty() ? "." : directory, component);
    if (names == nullptr)
        return isAbsence(GetLastError());
    if (const std::string* entry = findName(*names, component)) {
        component = *entry;
        exists = true;
    }
    return true;
}

} // namespace

void forgetListings() {
    kept.clear();
}

bool readNames(const std::string& directory, std::vector<std::string>& names, std::string_view wanted) {
    names.clear();
    const std::unique_ptr<DIR, CloseDirectory> stream(opendir(directory.c_str()));
    if (stream == nullptr) {
        const int systemError = errno;
        if (countsAsDirectory(directory))
            return true;
        setLastErrorFromErrno(systemError, directory + "/."); // missing: the path, not an entry of it
        return false;
    }
    errno = 0;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && (wanted.empty() || equalIgnoringCase(name, wanted)))
            names.emplace_back(name);
    }
    const bool complete = errno == 0;
    if (!complete) {
        setLastErrorFromErrno(errno, directory);
        names.clear();
    }
    applyPlan(directory, names);
    std::sort(names.begin(), names.end(), beforeInOrder);
    return complete;
}

const std::string* findName(const std::vector<std::string>& names, std::string_view name) {
    const auto first = std::lower_bound(names.begin(), names.end(), name, before);
    auto entry = first;
    while (entry != names.end() && *entry != name && equalIgnoringCase(*entry, name))
        ++entry;
    if (entry != names.end() && *entry == name)
        return &*entry;
    return first == entry ? nullptr : &*first;
}

bool findPath(std::string_view path, std::string& found) {
    std::string given(path);
    std::replace(given.begin(), given.end(), '\\', '/');
    found = given;
    if (presenceOf(given) == Presence::there)
        return true;
    found.clear();
    for (std::size_t at = 0; at < given.size();) {
        const std::size_t start = std::min(given.find_first_not_of('/', at), given.size());
        const std::size_t end = std::min(given.find('/', start), given.size());
        found.append(given, at, start - at);
        std::string component = given.substr(start, end - start);
        bool exists = false;
        const bool known = findComponent(found, component, exists);
        found += component;
        at = end;
        if (!known || !exists) {
            found.append(given, at);
            return known;
        }
    }
    return true;
}

std::string resolvePath(std::string_view path) {
    std::string found;
    findPath(path, found);
    return found;
}

bool pathExists(std::string_view path) {
    return presenceOf(resolvePath(path)) == Presence::there;
}

bool leadsInto(std::string_view path, std::string_view directory) {
    std::error_code failure;
    const auto whole = std::filesystem::weakly_canonical(resolvePath(path), failure).string();
    const auto top =
        failure ? std::string() : std::filesystem::canonical(resolvePath(directory), failure).string();
    SetLastError(ERROR_SUCCESS);
    if (failure)
        setLastErrorFromErrno(failure.value(), std::string(path));
    return !failure && whole.size() > top.size() && whole.compare(0, top.size(), top) == 0 &&
           (whole[top.size()] == '/' || top.back() == '/');
}

std::vector<std::string> directoryEntries(const std::string& directory) {
    std::vector<std::string> names;
    readNames(resolvePath(directory), names);
    return names;
}

bool standsAlone(std::string_view path) {
    const std::string found = resolvePath(path);
    const std::string name = found.substr(found.rfind('/') + 1);
    const std::vector<std::string>* names = namesForLookup(directoryOf(found), name);
    if (names == nullptr)
        return false;
    const auto [first, end] = std::equal_range(names->begin(), names->end(), name, before);
    if (end - first < 2)
        return true;
    SetLastError(ERROR_ALREADY_EXISTS);
    return false;
}

OneLook::OneLook() {
    forgetListings();
    onelook = true;
}

OneLook::~OneLook() {
    onelook = false;
    forgetListings();
}

void OneLook::renew() {
    forgetListings();
}
