#include "platform/system/tree.h"

#include <algorithm>
#include <cstdlib>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/system/letters.h"
#include "platform/system/posix.h"
#include "platform/system/ways.h"

struct Tree::Inside {
    Failure find(DiskOperation operation, std::string_view name, Spot& spot);
    Failure findToChange(DiskOperation operation, std::string_view name, Spot& spot);
    Failure findToRemove(std::string_view name, const FileState& judged, Spot& spot);
    Failure findMissing(DiskOperation operation, std::string_view name, Spot& spot);
    Failure findFree(DiskOperation operation, std::string_view name, Spot& spot);

    std::string path;
    Ways ways;
    std::uint64_t temporaries = 0; // the number in their names; 0: one at random
    // What was looked at last: opened next to be read, it is not looked at once more.
    std::string lookedAt; // empty: nothing
    Spot looked;
    void forgetLooked() {
        lookedAt.clear();
        looked = {};
    }
};

namespace {

std::string lastComponent(std::string_view name) {
    const std::string given = withSlashes(name);
    return given.substr(given.rfind('/') + 1);
}

int openIn(const OpenDirectory& directory, const char* name, int flags, mode_t mode = 0) {
    constexpr int always = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    return retryInterrupted([&] { return openat(directory.descriptor, name, flags | always, mode); });
}

// How what is made in a directory comes to its owner, its group and its rights. Where the directory has a
// default list of rights, the system gives all but the owner by that.
struct Share {
    explicit Share(const OpenDirectory& directory) {
        if (fstat(directory.descriptor, &parent) != 0)
            parent = {};
        const File readable(openDirectoryAgain(directory.descriptor));
        byList = fgetxattr(readable.descriptor(), defaultList, nullptr, 0) > 0;
    }
    // What the system does not allow stays as it is. Another group than the directory's writes nothing.
    void give(int made, mode_t bits) const {
        struct stat state = {};
        if (parent.st_mode == 0 || fstat(made, &state) != 0)
            return;
        const uid_t owner = geteuid() == 0 ? parent.st_uid : state.st_uid;
        const gid_t group = byList ? state.st_gid : parent.st_gid;
        const bool given =
            (owner == state.st_uid && group == state.st_gid) || fchown(made, owner, group) == 0;
        const mode_t withheld = given || group == state.st_gid ? 0 : S_IWGRP;
        if (!byList) [[maybe_unused]]
            const int changed = fchmod(made, (parent.st_mode & bits & ~withheld) | (state.st_mode & S_ISGID));
    }
    struct stat parent = {};
    bool byList = false;
};

// No search of the program finds it, and who finds a change interrupted knows it by the change's number.
std::string temporaryName(std::uint64_t number) {
    if (number == 0 && getrandom(&number, sizeof number, 0) != sizeof number)
        number = static_cast<std::uint64_t>(getpid());
    char text[24] = {};
    std::snprintf(text, sizeof text, ".tx%016llx", static_cast<unsigned long long>(number));
    return text;
}

int makeNamed(const OpenDirectory& directory, const std::string& name, mode_t mode) {
    return openIn(directory, name.c_str(), O_CREAT | O_EXCL | O_RDWR, mode);
}

// A file that has no name yet; -1 where it could not be given one later.
int makeUnnamed(const OpenDirectory& directory, mode_t mode) {
    const int file = openIn(directory, ".", O_TMPFILE | O_RDWR, mode);
    if (file < 0 || access(("/proc/self/fd/" + std::to_string(file)).c_str(), F_OK) == 0)
        return file;
    close(file);
    return -1;
}

// Whether the file system knows second names of a file.
bool knowsLinks(const OpenDirectory& directory, const std::string& name) {
    const std::string second = name + "l";
    return linkat(directory.descriptor, name.c_str(), directory.descriptor, second.c_str(), 0) == 0 &&
           unlinkat(directory.descriptor, second.c_str(), 0) == 0;
}

Failure openAt(const Spot& spot, const char* name, int flags, File& file) {
    struct stat found = {};
    File opened(openIn(spot.directory(), name, flags));
    if (!opened.isOpen() || fstat(opened.descriptor(), &found) != 0)
        return failureFrom(errno);
    file = File(opened.release(), stateFrom(found));
    return {};
}

// A file that stands under a temporary name, or under its own where no other leads to it. -1 with errno set.
int makeStanding(const OpenDirectory& directory, const std::string& name, mode_t mode,
                 const std::string& temporary, std::string& standing) {
    standing = temporary.empty() ? name : temporary;
    int file = makeNamed(directory, standing, mode);
    if (file < 0 || temporary.empty() || knowsLinks(directory, standing))
        return file;
    close(file);
    unlinkat(directory.descriptor, standing.c_str(), 0);
    standing = name;
    return makeNamed(directory, standing, mode);
}

Failure appendTo(File& file, std::string_view bytes) {
    if (const Failure fault = faultOf(DiskOperation::write))
        return fault;
    const ssize_t size =
        retryInterrupted([&] { return write(file.descriptor(), bytes.data(), bytes.size()); });
    const int systemError = size < 0 ? errno : ENOSPC;
    const Failure closed = file.close();
    return size == static_cast<ssize_t>(bytes.size()) ? closed : failureFrom(systemError);
}

// Of a call that has made a name at a spot, or taken it away.
Failure named(const Spot& spot, int result, bool there) {
    const Failure failure = answer(result);
    if (!failure)
        there ? spot.directory().added(spot.name) : spot.directory().removed(spot.name);
    return failure;
}

} // namespace

Failure Tree::Inside::find(DiskOperation operation, std::string_view name, Spot& spot) {
    const Failure fault = faultOf(operation);
    forgetLooked();
    return fault ? fault : ways.find(name, Links::unfollowed, spot);
}

// What stands at a spot is to be changed: it has to be there, and inside.
Failure Tree::Inside::findToChange(DiskOperation operation, std::string_view name, Spot& spot) {
    const Failure failure = find(operation, name, spot);
    if (failure)
        return failure;
    if (!spot.outside.empty() || spot.name.empty())
        return {ERROR_ACCESS_DENIED};
    return {spot.isThere() ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND};
}

// A file or a link that is to go, if it is still the one that was judged.
Failure Tree::Inside::findToRemove(std::string_view name, const FileState& judged, Spot& spot) {
    const Failure failure = findToChange(DiskOperation::remove, name, spot);
    if (failure)
        return failure;
    if (S_ISDIR(spot.found.st_mode))
        return {ERROR_ACCESS_DENIED};
    return {stateFrom(spot.found) == judged ? ERROR_SUCCESS : ERROR_FILE_INVALID};
}

// A spot at which nothing stands yet, whatever the letters of its name.
Failure Tree::Inside::findMissing(DiskOperation operation, std::string_view name, Spot& spot) {
    const Failure failure = findToChange(operation, name, spot);
    if (failure.number == ERROR_FILE_NOT_FOUND)
        return {};
    return failure ? failure : Failure{ERROR_ALREADY_EXISTS};
}

// One at which nothing has that very name yet.
Failure Tree::Inside::findFree(DiskOperation operation, std::string_view name, Spot& spot) {
    Failure failure = findMissing(operation, name, spot);
    if (failure.number != ERROR_ALREADY_EXISTS)
        return failure;
    failure = ways.lookUp(spot, lastComponent(name));
    return failure || !spot.isThere() ? failure : Failure{ERROR_ALREADY_EXISTS};
}

Tree::Tree() : inside_(std::make_unique<Inside>()) {}

Tree::~Tree() = default;

Failure Tree::open(const std::string& path) {
    inside_->path = path;
    const Failure fault = faultOf(DiskOperation::open);
    return fault ? fault : inside_->ways.hold(path);
}

Failure Tree::openDirectoryOf(const std::string& path, std::string& name) {
    const std::size_t last = path.find_last_of("/\\") + 1; // 0 where there is no directory
    name = path.substr(last);
    return open(last == 0 ? "." : path.substr(0, last));
}

bool Tree::isOpen() const {
    return inside_->ways.isHeld();
}

const std::string& Tree::path() const {
    return inside_->path;
}

Failure Tree::fullPath(std::string& full) const {
    char* found = realpath(inside_->ways.spelledPath().c_str(), nullptr);
    full = found == nullptr ? "" : found;
    std::free(found);
    return found == nullptr ? failureFrom(errno) : Failure();
}

Failure Tree::begin() {
    inside_->forgetLooked();
    return inside_->ways.begin();
}

std::string Tree::below(std::string_view path) const {
    if (path.substr(0, inside_->path.size()) == inside_->path)
        path.remove_prefix(inside_->path.size());
    path.remove_prefix(std::min(path.find_first_not_of("/\\"), path.size()));
    std::string name = "/" + withSlashes(path);
    for (std::size_t at = name.find("/./"); at != std::string::npos; at = name.find("/./"))
        name.erase(at, 2);
    return name == "/" ? "." : name.substr(1);
}

std::string Tree::spelled(std::string_view path) {
    Spot spot;
    const std::string name = below(path);
    const Failure failure = inside_->ways.find(name, Links::unfollowed, spot);
    return failure && !failure.isAbsence() ? name : spot.spelled.empty() ? "." : spot.spelled;
}

Failure Tree::look(std::string_view name, Links links, Entry& entry) {
    Spot spot;
    inside_->lookedAt.clear();
    Failure failure = faultOf(DiskOperation::read);
    failure = failure ? failure : inside_->ways.find(name, links, spot);
    if (!failure && spot.name.empty() && spot.directory().descriptor >= 0)
        failure = answer(fstat(spot.directory().descriptor, &spot.found));
    entry = Entry();
    entry.name = spot.spelled.empty() ? "." : spot.spelled;
    entry.outside = spot.outside;
    if (failure || !spot.isThere())
        return failure.isAbsence() ? Failure() : failure;
    entry.state = stateFrom(spot.found);
    if (links == Links::followed) {
        inside_->lookedAt = name;
        inside_->looked = std::move(spot);
    }
    return {};
}

Failure Tree::names(std::string_view directory, std::vector<std::string>& names) {
    Spot spot;
    Failure failure = faultOf(DiskOperation::open);
    failure = failure ? failure : inside_->ways.findDirectory(directory, spot);
    failure = failure ? failure : inside_->ways.list(spot.directory());
    names = failure ? std::vector<std::string>() : spot.directory().names;
    return failure;
}

void Tree::lookThrough(const std::function<void(const Entry&)>& visit, const std::string& directory) {
    constexpr int deepest = 32; // of each level all above are held open, and walked again
    std::vector<std::string> entries;
    if (names(directory, entries))
        return;
    for (const std::string& name : entries) {
        Entry entry;
        if (look(directory == "." ? name : directory + "/" + name, Links::unfollowed, entry))
            continue;
        visit(entry);
        if (entry.state.kind == FileState::directory && std::ranges::count(entry.name, '/') < deepest)
            lookThrough(visit, entry.name);
    }
}

Failure Tree::standsAlone(std::string_view name) {
    Spot spot;
    Failure failure = inside_->find(DiskOperation::open, name, spot);
    failure = failure ? failure : inside_->ways.list(spot.directory());
    if (failure)
        return failure;
    const auto& names = spot.directory().names;
    const auto [first, end] = std::equal_range(names.begin(), names.end(), spot.name, beforeInCapitals);
    return {end - first < 2 ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS};
}

// The entry "." is looked up by the very rule by which a directory is entered.
Failure Tree::enter(std::string_view directory) {
    Spot spot;
    const Failure failure = inside_->ways.findDirectory(directory, spot);
    if (failure || spot.directory().descriptor < 0)
        return failure;
    return meanwhile(answer(fstatat(spot.directory().descriptor, ".", &spot.found, 0)));
}

// Looked at before the open, which alone can have effects on a pipe or a device.
Failure Tree::openFile(std::string_view name, File& file, Links links, int flags) {
    Spot spot;
    Failure failure = faultOf(DiskOperation::open);
    const bool known = name == inside_->lookedAt && links == Links::followed && flags == O_RDONLY;
    inside_->lookedAt.clear();
    if (known)
        spot = std::move(inside_->looked);
    else if (!failure)
        failure = inside_->ways.find(name, links, spot);
    if (failure)
        return failure;
    if (!spot.isThere())
        return {ERROR_FILE_NOT_FOUND};
    if (S_ISLNK(spot.found.st_mode))
        return {ERROR_CANT_RESOLVE_FILENAME};
    if (!S_ISREG(spot.found.st_mode) || (flags != O_RDONLY && !spot.outside.empty()))
        return {ERROR_ACCESS_DENIED};
    failure = meanwhile(openAt(spot, spot.name.c_str(), flags, file));
    if (!failure && file.opened().kind != FileState::plain)
        failure = {ERROR_ACCESS_DENIED};
    if (failure)
        file = File();
    return failure;
}

Failure Tree::openToRead(std::string_view name, File& file, Links links) {
    return openFile(name, file, links, O_RDONLY);
}

Failure Tree::openToWrite(std::string_view name, File& file, Links links) {
    return openFile(name, file, links, O_RDWR);
}

// What can't be opened without an effect, or at all, is opened to be named alone.
Failure Tree::openEntry(std::string_view name, File& file, Links links) {
    Spot spot;
    const Failure fault = faultOf(DiskOperation::open);
    if (const Failure failure = fault ? fault : inside_->ways.find(name, links, spot))
        return failure;
    if (!spot.outside.empty())
        return {ERROR_ACCESS_DENIED};
    if (spot.name.empty())
        return meanwhile(openAt(spot, ".", O_RDONLY, file));
    const bool readable = S_ISREG(spot.found.st_mode) || S_ISDIR(spot.found.st_mode);
    return spot.isThere() ? meanwhile(openAt(spot, spot.name.c_str(), readable ? O_RDONLY : O_PATH, file))
                          : Failure{ERROR_FILE_NOT_FOUND};
}

Failure Tree::append(std::string_view name, std::string_view bytes) {
    Spot spot;
    Failure failure = faultOf(DiskOperation::open);
    const std::string path = withSlashes(name);
    failure = failure ? failure : inside_->ways.findDirectory(path.substr(0, path.rfind('/') + 1), spot);
    if (failure || !spot.outside.empty())
        return failure ? failure : Failure{ERROR_ACCESS_DENIED};
    File file(openIn(spot.directory(), lastComponent(name).c_str(), O_WRONLY | O_APPEND | O_CREAT, 0666));
    if (!file.isOpen())
        return failureFrom(errno);
    return appendTo(file, bytes);
}

Failure Tree::replace(std::string_view name, std::string_view bytes) {
    Spot spot;
    Failure failure = inside_->findToChange(DiskOperation::link, name, spot);
    if (!failure && !S_ISREG(spot.found.st_mode))
        failure = {ERROR_ACCESS_DENIED};
    if (failure && failure.number != ERROR_FILE_NOT_FOUND)
        return failure;
    const int directory = spot.directory().descriptor;
    const std::string made = spot.name + ".new";
    unlinkat(directory, made.c_str(), 0); // of a run that was interrupted
    File file(makeNamed(spot.directory(), made, 0666));
    failure = file.isOpen() ? file.write(0, bytes) : failureFrom(errno);
    failure = failure ? failure : file.sync();
    failure = failure ? failure : file.close();
    failure = failure ? failure : answer(renameat(directory, made.c_str(), directory, spot.name.c_str()));
    return failure ? failure : syncDirectoryOf(name);
}

Failure Tree::readLink(std::string_view name, std::string& target) {
    Spot spot;
    const Failure failure = inside_->find(DiskOperation::read, name, spot);
    if (failure || !spot.isThere())
        return failure ? failure : Failure{ERROR_FILE_NOT_FOUND};
    return readTarget(spot, target);
}

Failure Tree::make(std::string_view name, NewFile& file, Rights rights, Appears appears) {
    Spot spot;
    const Failure failure = inside_->findFree(DiskOperation::open, name, spot);
    if (failure)
        return failure;
    file.directory_ = spot.way.back();
    file.name_ = lastComponent(name);
    const Share share(spot.directory());
    const bool shared = rights == Rights::asDirectory;
    const bool open = rights == Rights::usual || (shared && share.byList);
    const mode_t mode = open ? 0666 : 0600;
    int made = makeUnnamed(spot.directory(), mode);
    if (made < 0)
        made = makeStanding(spot.directory(), file.name_, mode,
                            appears == Appears::atOnce ? "" : temporaryName(inside_->temporaries),
                            file.standing_);
    if (made < 0) {
        file.standing_.clear();
        return failureFrom(errno);
    }
    file.file = File(made);
    if (shared)
        share.give(made, 0666);
    return {};
}

void Tree::numberTemporaries(std::uint64_t number) {
    inside_->temporaries = number;
}

void Tree::removeTemporaries(std::uint64_t number) {
    lookThrough([&](const Entry& entry) {
        if (lastComponent(entry.name).starts_with(temporaryName(number))) [[maybe_unused]]
            const Failure left = remove(entry.name, entry.state);
    });
}

// What another has put in its place meanwhile is given to nobody.
Failure Tree::makeDirectory(std::string_view name) {
    Spot spot;
    if (const Failure failure = inside_->findMissing(DiskOperation::makeDirectory, name, spot))
        return failure;
    const Share share(spot.directory());
    const int result = mkdirat(spot.directory().descriptor, spot.name.c_str(), share.byList ? 0777 : 0700);
    if (const Failure unmade = named(spot, result, true))
        return unmade;
    const File made(openIn(spot.directory(), spot.name.c_str(), O_RDONLY | O_DIRECTORY));
    std::vector<std::string> names;
    if (!readNames(made.descriptor(), names) && names.empty())
        share.give(made.descriptor(), 0777);
    return {};
}

Failure Tree::makeLink(std::string_view name, const std::string& target) {
    Spot spot;
    const Failure failure = inside_->findFree(DiskOperation::link, name, spot);
    return failure
               ? failure
               : named(spot, symlinkat(target.c_str(), spot.directory().descriptor, spot.name.c_str()), true);
}

Failure Tree::addName(std::string_view name, std::string_view existing) {
    Spot old, spot;
    Failure failure = inside_->findToChange(DiskOperation::link, existing, old);
    failure = failure ? failure : inside_->findFree(DiskOperation::link, name, spot);
    return failure ? failure
                   : named(spot,
                           linkat(old.directory().descriptor, old.name.c_str(), spot.directory().descriptor,
                                  spot.name.c_str(), 0),
                           true);
}

Failure Tree::remove(std::string_view name, const FileState& judged) {
    Spot spot;
    const Failure failure = inside_->findToRemove(name, judged, spot);
    return failure ? failure
                   : named(spot, unlinkat(spot.directory().descriptor, spot.name.c_str(), 0), false);
}

Failure Tree::removeDirectory(std::string_view name) {
    Spot spot;
    const Failure failure = inside_->findToChange(DiskOperation::remove, name, spot);
    return failure
               ? failure
               : named(spot, unlinkat(spot.directory().descriptor, spot.name.c_str(), AT_REMOVEDIR), false);
}

// A file system that knows no such sync of a directory has nothing more to give.
Failure Tree::syncDirectoryOf(std::string_view name) {
    Spot spot;
    const Failure failure = inside_->find(DiskOperation::sync, name, spot);
    if (failure)
        return failure;
    const File directory(openDirectoryAgain(spot.directory().descriptor));
    if (!directory.isOpen())
        return failureFrom(errno);
    return fsync(directory.descriptor()) == 0 || errno == EINVAL ? Failure() : failureFrom(errno);
}

Failure Tree::mayChangeDirectoryOf(std::string_view name) {
    Spot spot;
    const Failure failure = inside_->ways.find(name, Links::unfollowed, spot);
    if (failure || spot.directory().descriptor < 0)
        return failure;
    if (!spot.outside.empty())
        return {ERROR_ACCESS_DENIED};
    return answer(faccessat(spot.directory().descriptor, ".", W_OK | X_OK, AT_EACCESS));
}

Failure Tree::planRemoval(std::string_view name, const FileState& judged) {
    Spot spot;
    Failure failure = inside_->findToRemove(name, judged, spot);
    failure = failure ? failure : mayChangeDirectoryOf(name);
    if (!failure)
        inside_->ways.plan(spot, false);
    return failure;
}

Failure Tree::planDirectory(std::string_view name) {
    Spot spot;
    Failure failure = inside_->findMissing(DiskOperation::makeDirectory, name, spot);
    failure = failure ? failure : mayChangeDirectoryOf(name);
    if (!failure)
        inside_->ways.plan(spot, true);
    return failure;
}
