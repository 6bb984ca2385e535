// The list of the undo files of this user.
#pragma once

#include <iosfwd>
#include <string>

// Writes what each can take back, the oldest first, or one JSON document; with a directory, of the database
// there alone. The exit status.
int writeUndoList(std::ostream& out, const std::string& directory, bool json);
