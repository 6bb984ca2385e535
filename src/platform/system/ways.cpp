#include "platform/system/ways.h"

#include <algorithm>
#include <climits>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "platform/system/letters.h"
#include "platform/system/posix.h"

namespace {

constexpr int mostLinks = 40; // as the system has it

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

// Takes the first component off a path, without the separators about it.
std::string_view takeComponent(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const std::string_view component = path.substr(0, path.find('/'));
    path.remove_prefix(component.size());
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    return component;
}

void append(std::string& path, std::string_view component) {
    if (!path.empty() && path.back() != '/' && !component.empty())
        path += '/';
    path += component;
}

} // namespace

std::string withSlashes(std::string_view name) {
    std::string path(name);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

int openDirectoryAgain(int descriptor) {
    return retryInterrupted([&] { return openat(descriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
}

// Half of the names must not pass for all of them.
Failure readNames(int descriptor, std::vector<std::string>& names) {
    names.clear();
    const int readable = openDirectoryAgain(descriptor);
    const std::unique_ptr<DIR, CloseDirectory> stream(readable < 0 ? nullptr : fdopendir(readable));
    if (stream == nullptr)
        return failureFrom(errno);
    errno = 0;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    return answer(errno);
}

Failure readTarget(const Spot& spot, std::string& target) {
    target.resize(PATH_MAX);
    const ssize_t size =
        readlinkat(spot.directory().descriptor, spot.name.c_str(), target.data(), target.size());
    target.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    return size < 0 ? failureFrom(errno) : Failure();
}

OpenDirectory::~OpenDirectory() {
    if (descriptor >= 0)
        close(descriptor);
}

void OpenDirectory::added(const std::string& name) {
    const auto at = std::lower_bound(names.begin(), names.end(), name, beforeInOrder);
    if (listed && (at == names.end() || *at != name))
        names.insert(at, name);
}

void OpenDirectory::removed(const std::string& name) {
    const auto at = std::lower_bound(names.begin(), names.end(), name, beforeInOrder);
    if (at != names.end() && *at == name)
        names.erase(at);
}

Failure Ways::open(int at, const char* name, int flags, DirectoryHandle& directory) {
    auto opened = std::make_shared<OpenDirectory>();
    opened->descriptor =
        retryInterrupted([&] { return openat(at, name, O_PATH | O_DIRECTORY | O_CLOEXEC | flags); });
    struct stat state = {};
    if (opened->descriptor < 0 || fstat(opened->descriptor, &state) != 0)
        return failureFrom(errno);
    opened->identity = {state.st_dev, state.st_ino};
    directory = opened_.emplace(opened->identity, opened).first->second;
    return {};
}

// The system knows of more kinds of links than can be read, so it is asked first.
Failure Ways::reach(const std::string& path, Spot& spot) {
    spot.way.resize(1);
    spot.spelled = path;
    Failure failure = open(AT_FDCWD, path.c_str(), 0, spot.way[0]);
    if (failure.number != ERROR_FILE_NOT_FOUND)
        return failure;
    const bool absolute = path.starts_with('/');
    spot.spelled = absolute ? "/" : "";
    failure = open(AT_FDCWD, absolute ? "/" : ".", 0, spot.way[0]);
    failure = failure ? failure : walk(spot, path, Links::followed);
    return failure ? failure : enter(spot);
}

Failure Ways::hold(const std::string& path) {
    path_ = withSlashes(path);
    Spot spot;
    Failure failure = reach(path_, spot);
    if (failure.isAbsence())
        failure.number = ERROR_PATH_NOT_FOUND;
    if (failure)
        return failure;
    top_ = spot.way.back();
    spelledPath_ = spot.spelled;
    return {};
}

Failure Ways::begin() {
    if (top_ == nullptr)
        return {ERROR_PATH_NOT_FOUND};
    reached_.clear();
    opened_.clear();
    Spot spot;
    lost_ = reach(path_, spot);
    if (!lost_ && spot.directory().identity != top_->identity)
        lost_.number = ERROR_PATH_NOT_FOUND;
    top_->listed = false;
    opened_.clear();
    opened_.emplace(top_->identity, top_);
    return lost_;
}

Failure Ways::find(std::string_view name, Links links, Spot& spot) {
    std::string given = withSlashes(name);
    given.erase(given.find_last_not_of('/') + 1);
    const std::size_t last = given.rfind('/') + 1; // 0 where there is no directory
    const Failure failure = findDirectory(std::string_view(given).substr(0, last), spot);
    if (!failure)
        return walk(spot, std::string_view(given).substr(last), links);
    append(spot.spelled, std::string_view(given).substr(last));
    return failure;
}

Failure Ways::findDirectory(std::string_view name, Spot& spot) {
    if (const auto known = reached_.find(name); known != reached_.end()) {
        spot = known->second;
        return lost_;
    }
    spot = Spot();
    spot.way = {top_};
    spot.found.st_mode = S_IFDIR;
    Failure failure = top_ == nullptr ? Failure{ERROR_PATH_NOT_FOUND} : lost_;
    failure = failure ? failure : walk(spot, withSlashes(name), Links::followed);
    failure = failure ? failure : enter(spot);
    if (!failure)
        reached_.emplace(name, spot);
    return failure;
}

Failure Ways::walk(Spot& spot, std::string_view path, Links links) {
    while (!path.empty()) {
        const std::string component(takeComponent(path));
        const Failure failure = step(spot, component, path.empty() ? links : Links::followed);
        if (failure && spot.depth == 0)
            append(spot.spelled, path);
        if (failure)
            return failure;
    }
    return {};
}

Failure Ways::step(Spot& spot, const std::string& component, Links links) {
    if (component.empty() || component == ".")
        return {};
    const bool given = spot.depth == 0;
    Failure failure = enter(spot);
    if (!failure)
        failure = component == ".." ? goUp(spot) : lookAround(spot, component);
    if (given)
        append(spot.spelled, failure || component == ".." ? component : spot.name);
    if (!failure && links == Links::followed && S_ISLNK(spot.found.st_mode))
        failure = follow(spot);
    if (given) {
        const bool inside = std::find(spot.way.begin(), spot.way.end(), top_) != spot.way.end();
        spot.outside = inside ? "" : spot.outside.empty() ? spot.spelled : spot.outside;
    }
    return failure;
}

// Goes from an entry that is a directory into it.
Failure Ways::enter(Spot& spot) {
    if (spot.name.empty())
        return {};
    if (!S_ISDIR(spot.found.st_mode))
        return {ERROR_PATH_NOT_FOUND};
    DirectoryHandle next;
    if (const auto planned = planned_.find(spot.key()); planned != planned_.end())
        next = planned->second;
    else if (const Failure failure = open(spot.directory().descriptor, spot.name.c_str(), O_NOFOLLOW, next))
        return meanwhile(failure);
    spot.way.push_back(next);
    spot.name.clear();
    return {};
}

Failure Ways::goUp(Spot& spot) {
    if (spot.way.size() == 1)
        return open(spot.directory().descriptor, "..", 0, spot.way[0]);
    spot.way.pop_back();
    return {};
}

Failure Ways::lookUp(Spot& spot, const std::string& name) const {
    spot.name = name;
    spot.found = {};
    const int directory = spot.directory().descriptor;
    if (const auto planned = planned_.find(spot.key()); planned != planned_.end())
        spot.found.st_mode = planned->second != nullptr ? S_IFDIR : 0;
    else if (directory >= 0 && fstatat(directory, name.c_str(), &spot.found, AT_SYMLINK_NOFOLLOW) != 0) {
        spot.found = {};
        return answer(errno == ENOENT ? 0 : -1);
    }
    return {};
}

// The text of a link means what the system takes it for: its letters are as they stand.
Failure Ways::lookAround(Spot& spot, const std::string& component) {
    Failure failure = lookUp(spot, component);
    if (failure || spot.isThere() || spot.depth > 0)
        return failure;
    failure = list(spot.directory());
    const std::string* other = findName(spot.directory().names, component);
    if (failure || other == nullptr)
        return failure;
    for (int tries = 0; tries < 2 && !failure && !spot.isThere(); ++tries)
        failure = lookUp(spot, *other); // which another program may have moved for a moment
    if (!failure && !spot.isThere())
        spot.name = component;
    return failure;
}

Failure Ways::follow(Spot& spot) {
    if (++spot.links > mostLinks)
        return {ERROR_CANT_RESOLVE_FILENAME};
    std::string target;
    Failure failure = readTarget(spot, target);
    spot.name.clear();
    spot.found.st_mode = S_IFDIR;
    if (!failure && target.starts_with('/')) {
        spot.way.resize(1);
        failure = open(AT_FDCWD, "/", 0, spot.way[0]);
    }
    ++spot.depth;
    failure = failure ? failure : walk(spot, target, Links::followed);
    --spot.depth;
    if (failure ? failure.isAbsence() : !spot.isThere())
        failure.number = ERROR_CANT_RESOLVE_FILENAME;
    return failure;
}

Failure Ways::list(OpenDirectory& directory) const {
    if (directory.listed)
        return {};
    const Failure failure =
        directory.descriptor < 0 ? Failure() : readNames(directory.descriptor, directory.names);
    if (failure)
        return meanwhile(failure);
    for (const auto& [key, made] : planned_)
        if (key.first == directory.identity && made != nullptr)
            directory.names.push_back(key.second);
    const auto isGone = [&](const std::string& name) {
        const auto planned = planned_.find({directory.identity, name});
        return planned != planned_.end() && planned->second == nullptr;
    };
    if (!planned_.empty())
        std::erase_if(directory.names, isGone);
    std::sort(directory.names.begin(), directory.names.end(), beforeInOrder);
    directory.listed = true;
    return {};
}

// It has a number of its own, as the directories of the disk have, but on no device.
void Ways::plan(const Spot& spot, bool directory) {
    DirectoryHandle& planned = planned_[spot.key()];
    if (!directory)
        return spot.directory().removed(spot.name);
    planned = std::make_shared<OpenDirectory>();
    planned->identity = {~std::uint64_t{0}, planned_.size()};
    spot.directory().added(spot.name);
}
