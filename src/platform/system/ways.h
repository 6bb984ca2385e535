// How a name below an open directory is walked: from one open directory to the next, links being read and
// walked by the same code. Nothing outside of the folder includes it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "platform/system/errors.h"
#include "platform/system/file.h"
#include "platform/system/filestate.h"

// A directory held open, and its names as they were read once and changed by the program since.
struct OpenDirectory {
    OpenDirectory() = default;
    OpenDirectory(const OpenDirectory&) = delete;
    OpenDirectory& operator=(const OpenDirectory&) = delete;
    ~OpenDirectory();

    void added(const std::string& name);
    void removed(const std::string& name);

    int descriptor = -1; // to go by, not to read; -1: it is planned
    FileIdentity identity;
    bool listed = false;
    std::vector<std::string> names; // in order
};
using DirectoryHandle = std::shared_ptr<OpenDirectory>;

// Where a walk has come to: an entry, and the directories through which it went.
struct Spot {
    bool isThere() const { return found.st_mode != 0; }
    OpenDirectory& directory() const { return *way.back(); }
    std::pair<FileIdentity, std::string> key() const { return {directory().identity, name}; }

    std::vector<DirectoryHandle> way;
    std::string name;       // in the last of them; empty: that directory itself
    struct stat found = {}; // all 0 where nothing stands there
    std::string spelled;    // the name that was walked, as on the disk
    std::string outside;    // the part of it that leads out of the held directory; empty: it is inside
    int links = 0;          // that were followed
    int depth = 0;          // of the links within which the walk is just now
};

class Ways {
public:
    // Holds the directory of a path.
    Failure hold(const std::string& path);
    // Looks whether the path still leads to it, and forgets what was opened and read below.
    Failure begin();
    bool isHeld() const { return top_ != nullptr; }
    const std::string& spelledPath() const { return spelledPath_; }

    // Walks a name. That nothing stands there is no failure where its directory is there, else 3.
    Failure find(std::string_view name, Links links, Spot& spot);
    // The same to a directory, which the spot then is.
    Failure findDirectory(std::string_view name, Spot& spot);
    // Looks anew whether an entry has that very name in the directory of the spot.
    Failure lookUp(Spot& spot, const std::string& name) const;
    // Reads the names of a directory where that was not done yet.
    Failure list(OpenDirectory& directory) const;
    // Counts what stands at a spot as gone, or a directory as there.
    void plan(const Spot& spot, bool directory);

private:
    Failure reach(const std::string& path, Spot& spot);
    Failure walk(Spot& spot, std::string_view path, Links links);
    Failure step(Spot& spot, const std::string& component, Links links);
    Failure enter(Spot& spot);
    Failure goUp(Spot& spot);
    Failure lookAround(Spot& spot, const std::string& component);
    Failure follow(Spot& spot);
    Failure open(int at, const char* name, int flags, DirectoryHandle& directory);

    std::string path_;
    std::string spelledPath_;
    DirectoryHandle top_;
    Failure lost_; // since the last begin
    std::map<FileIdentity, DirectoryHandle> opened_;
    std::map<std::string, Spot, std::less<>> reached_; // directories by their names as given
    // By the directory in which they stand: directories that count as there, and none for what counts as
    // gone.
    std::map<std::pair<FileIdentity, std::string>, DirectoryHandle> planned_;
};

// A name with / as its only separator.
std::string withSlashes(std::string_view name);

// Opens a directory that is held, to read its names or to sync them; -1 with errno set.
int openDirectoryAgain(int descriptor);
// All names in it but "." and "..".
Failure readNames(int descriptor, std::vector<std::string>& names);

Failure readTarget(const Spot& spot, std::string& target); // of a link
