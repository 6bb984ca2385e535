// Writes the undo file of a run: group by group, each on the disk itself before the first of its changes is
// made.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "changes/undofile.h"

std::uint64_t randomnumber(); // not 0

// Each operation gives an empty text on success, else what could not be done.
class UndoWriter {
public:
    // A new undo file under the path, or where that is empty in the user's state directory. Touches nothing
    // yet.
    UndoWriter(std::string wanted, bool isrestore) : wanted_(std::move(wanted)), isrestore_(isrestore) {}

    // Puts a group on the disk with what stands there now; its changes may be made then.
    std::string keep(Tree& database, std::vector<Change>& group);
    std::string finish(); // the group has been made, as far as that was possible
    void drop();          // the group is not made at all

    const std::string& path() const { return path_; } // empty as long as there is no file
    const std::string& name() const {
        return name_;
    } // in the state directory; empty where it is not found there
    std::uint64_t number() const { return header_.number; }
    std::uint32_t group() const { return groups_; } // of the last that was kept, from 1
    // Why a later run will not find the file by itself; empty where it will.
    const std::string& unfound() const { return unfound_; }

private:
    bool stands();
    std::string make(Tree& database);
    std::string makeInState(const std::string& directory);
    std::string makeElsewhere(const std::string& directory);
    std::string makeHere(const std::string& name, const std::string& directory);
    Failure underFreeName(Tree& directory, const std::function<Failure(const std::string&)>& make) const;
    std::string linkToIt();
    std::string append(Tree& database, std::vector<Change>& group);
    std::string count(Tree& database, std::vector<Change>& group, std::vector<DirectoryTimes>& directories);
    std::string putHeader();

    std::string wanted_;
    bool isrestore_;
    std::string path_, name_, unfound_;
    std::unique_ptr<Tree> directory_; // where the file stands
    std::string nameThere_;
    File file_;
    UndoHeader header_; // as it is in the file
    UndoHeader before_; // and was before the last group
    std::uint32_t groups_ = 0;
    std::set<std::string> parents_; // directories whose times are in the file
};

// Notes in an undo file that its groups from that one on were taken back. A failure is no harm: it is for the
// list.
void markrestored(const std::string& path, std::uint32_t group);
// The same: that all its groups are finished, where it has that number.
void markfinished(const std::string& path, std::uint64_t number);
