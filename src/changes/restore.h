// Brings a database back to what it was before the changes of an undo file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "changes/commit.h"

struct RestoreOptions {
    std::string undofile;
    std::uint32_t fromgroup = 1; // this one and all later ones are taken back
    bool yes = false;            // restore the rest where something has changed since
    bool plan = false;           // only say what would be done
    bool recorded = false;       // nobody gave the directory but the undo file: no link may lead to it
    CommitOptions commit = {};   // of the restore itself
};

struct RestoreResult {
    std::string refused; // why nothing was done; empty otherwise
    // What has changed since or could not be brought back, each with the reason.
    std::vector<std::string> left;
    std::vector<Change> changes; // what was done, or would be, in this order
    std::string ownundofile;     // empty when nothing had to be done
    bool open = false;           // not all that was written is on the disk
};

// The directory that an undo file is about; empty where the file can't be used, and why then says so.
std::string recordeddirectory(const std::string& undofile, std::string& why);

// The caller holds the database. May be interrupted and made again.
RestoreResult restore(const std::shared_ptr<Tree>& tree, RestoreOptions options);
