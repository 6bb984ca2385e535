// The list of the undo files of this user.
#pragma once

#include <iosfwd>

// Writes a line for each, the oldest first, or one JSON document. The exit status.
int writeUndoList(std::ostream& out, bool json);
