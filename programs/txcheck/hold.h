// The exclusive hold of a database for the time of a run.
#pragma once

#include <string>

#include "platform/system/hold.h"
#include "platform/system/tree.h"

enum class Marker {
    made,    // where there is none, it is made
    present, // the one that is there is held; none is made
    left,    // no hold is taken
};

// Makes sure that a database is there and can be read, opens the tree and takes hold of it by the marker.
// Empty on success, else why it can't be done; nothing has been touched then.
std::string takeHold(Tree& tree, const std::string& directory, Marker wish, HANDLE& marker);
