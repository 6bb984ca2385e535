// Brings a database back to what it was before the changes that an undo file tells.
#pragma once

#include <string>
#include <vector>

#include "model/change.h"

struct RestoreOptions {
    std::string undoFile;
    std::string databaseDirectory;
    bool yes = false;        // restore the rest where something has changed since
    bool keepUndo = true;    // write an undo file of the restore
    std::string ownUndoFile; // where to; empty: into the user's state directory
};

struct RestoreResult {
    std::string refused; // why nothing was done; empty otherwise
    // What has changed since or could not be brought back, each with the reason.
    std::vector<std::string> left;
    std::vector<Change> changes; // what was done, in this order
    std::string ownUndoFile;     // empty when nothing had to be done
    bool complete() const { return refused.empty() && left.empty(); }
};

// The directory that an undo file is about; empty where the file can't be read or is damaged, and why then
// says so.
std::string recordedDirectory(const std::string& undoFile, std::string& why);

// The caller holds the database. May be interrupted and made again.
RestoreResult restore(const RestoreOptions& options);
