// Which database is the current one: two values of the per-user settings store, and the settings file of that
// database in the home directory.
#pragma once

#include "files/databasefile.h"

// Reads the home directory and the current database from the settings store. False if either is missing or
// has more than 998 bytes; it is then left as it is.
bool readSettingsStore(DatabaseSettings& settings);

// Writes these two to the settings store; an empty one is left as it stands there. False if the store can't
// be written.
bool writeSettingsStore(const DatabaseSettings& settings);

extern const char* const notStartedText;      // the settings store lacks a value
extern const char* const noValidDatabaseText; // the settings file can't be opened
