// The marker file of a database, whose open handle is the lock that keeps a second program off, and the sign
// of a connected database beside it.
#pragma once

#include <string>

#include "platform/system/hold.h"
#include "platform/system/tree.h"

// Whether the directory holds anything of a database: one of its directories, a plain file *.CMP or the
// marker. One that was typed and holds nothing of it should get no marker.
bool isDatabase(Tree& tree);
// What to tell the person where it doesn't.
std::string noDatabaseText(const char* directory);

extern const char* const markerName; // of the marker file

// Takes exclusive hold of the marker file open_db.txf in the database directory and makes it if it is
// missing. INVALID_HANDLE_VALUE on failure; lockFailureText then says why.
HANDLE openMarker(Tree& tree);

// What to tell the person after a failed openMarker, with the number and text of the last error.
std::string lockFailureText();
// What else helps the person then: the marker's path and a way out, in lines of their own. Empty where
// another program holds it, which says all.
std::string lockAdvice(const char* databaseDirectory);

// Whether a connected database, a plain file *.xdb, lies in the directory.
bool hasConnectedDatabase(Tree& tree);

extern const char* const connectedDatabaseText; // the warning about it, which ends in a question
