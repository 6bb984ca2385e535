// Where undo files stand, and how long.
#pragma once

#include <string>
#include <vector>

// The directory of the user's undo files; empty where neither XDG_STATE_HOME nor HOME says where.
std::string undoDirectory();
// The paths of the undo files in it, and of the links to those that stand elsewhere, the oldest first.
std::vector<std::string> undoFilePaths();
// Removes those that are finished and older than 30 days, but for the last ten of each database, and links to
// nothing.
void removeOldUndoFiles();
