// What has to be done to each file of a database so that it is again what it was before the changes of an
// undo file, and what has changed since and is left. Changes nothing.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "undo/undofile.h"
#include "undo/undowriter.h"

struct FileRestore {
    std::string name;
    bool remove = false;                  // what stands there was made by the changes, and goes
    const UndoItem* recreate = nullptr;   // the deletion that is taken back
    std::string content;                  // of the file then, or
    std::string secondOf;                 // the other name of the same file
    std::vector<NewField> fields;         // of a file that stays
    std::int64_t size = -1;               // that it gets, where that is another
    std::uint32_t checksum = 0;           // of the whole content in the end
    const EntryState* state = nullptr;    // that it gets
    const UndoItem* attributes = nullptr; // with the extended attributes that go with it
};

class RestorePlan {
public:
    RestorePlan(const UndoFile& undo, const std::string& databaseDirectory);

    std::vector<FileRestore> files;           // in the order in which they are to be restored
    std::vector<const UndoItem*> directories; // whose times are given back last
    std::vector<std::string> left;            // what has changed since, and how
    std::set<std::string> leftNames;

private:
    using Items = std::vector<const UndoItem*>; // of one file, the last first

    void planFile(const std::string& name, const Items& items);
    bool isSecondName(const UndoItem& deletion, std::string& secondOf) const;

    std::string root_;
    std::set<std::string> removed_; // names that go
    std::set<std::string> beside_;  // names of deleted ones, and those beside them that differ only in case
    std::set<std::string> known_;   // names that are in the end what they were
};

std::string parentOf(const std::string& name); // "" for one in the database directory itself
