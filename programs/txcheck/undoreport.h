// The list of the undo files of this user.
#pragma once

#include <string>

// Writes to standard output what each can take back, the oldest first, as a text or a JSON document; with a
// directory, of the database there alone. The exit status.
int writeUndoList(const std::string& directory, bool asDocument);
