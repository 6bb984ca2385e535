// Where undo files stand, how long, and what they are about.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "changes/undofile.h"

// The directory of the user's undo files; empty where neither XDG_STATE_HOME nor HOME says where.
std::string undodirectory();
// Opens it; makes it first where that is wanted, for the user alone.
Failure openundodirectory(Tree& directory, bool make);

// A name that stands behind all others, whatever the clock says.
std::string newundoname(Tree& directory, std::int64_t now, int number);
// Removes those that are finished and older than 30 days, but for the last ten of each database, and links to
// nothing. Nothing where the clock is 30 days beyond the newest other than the one just made.
void removeoldundofiles(Tree& directory, const std::string& justmade);

struct UndoListEntry {
    std::string path;
    std::string directory;  // of the database
    std::int64_t time = 0;  // seconds since 1970
    std::int64_t size = 0;  // bytes
    std::int64_t maygo = 0; // from when on it may be removed; the last ten of a database stay
    UndoHeader header;
    std::string damage; // why it can't be used; all but path and size are unknown then

    // In words: "5 keys changed, 2 files deleted", and "restored", "a restore", "interrupted", or empty.
    std::string what() const { return summaryof(header.keys, header.deletions, header.makings); }
    std::string state() const;
};
std::string timetext(std::int64_t seconds); // since 1970, as the clock here tells it: 2026-11-25 21:40:08

// Those of the user, the oldest first; with a directory, those about the database there.
std::vector<UndoListEntry> listundofiles(const std::string& directory = "");
