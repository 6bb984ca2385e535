// An undo file is the journal of its run too: what a run that was interrupted has left half done is finished
// by the next run of that user which holds the database, before anything is loaded.
#pragma once

#include <string>
#include <vector>

struct FinishedWork {
    // For the person: what was finished, and what was left. Empty: nothing was waiting.
    std::vector<std::string> texts;
    bool complete = true; // false: something still waits, or may, and the database must not be used as it is
};

// Whether something waits. Changes nothing.
bool isInterrupted(const std::string& directory);

// Writes the new bytes where old or torn ones stand in a key field, leaves other bytes and names them, and
// names the deletions and makings that were not done any more.
FinishedWork finishInterrupted(const std::string& directory);
