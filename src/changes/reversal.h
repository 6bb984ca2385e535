// The changes that take back those of an undo file, made from what stands on the disk now, and what has
// changed since and is left. Changes nothing.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "changes/linkednames.h"
#include "changes/undofile.h"

class Reversal {
public:
    Reversal(Tree& tree, const UndoFile& undo, std::uint32_t fromgroup);

    std::vector<Change> changes;       // looked at, in the order in which they are to be made
    std::vector<std::string> left;     // what has changed since, and how
    std::set<std::string> leftin;      // directories of what is left
    std::vector<const Change*> linked; // deletions of files that had more names than one

private:
    using Steps = std::vector<const Change*>; // of one file, the last first

    void reverse(const std::string& name, const Steps& steps);
    bool leadstosame(const Change& deletion);

    Tree& tree_;
    LinkedNames linked_;
    std::set<std::string> going_; // names that go
    std::set<std::string> same_;  // names that are in the end what they were
};
