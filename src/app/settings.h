// Which database is the current one: two values of the per-user settings store, and the settings file of that
// database in the home directory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/system/text.h"

constexpr std::size_t maxsettingsline =
    598; // bytes of a line of the settings file; a longer one is taken as several

struct DatabaseSettings {
    Text<2000> homeDirectory;     // holds the database settings files and the log
    Text<2000> currentDatabase;   // the database's name
    Text<2000> databaseDirectory; // holds the database tree; empty if the settings file doesn't name it
    std::int32_t backgroundColour[3] = {};
};

// Reads the home directory and the current database from the settings store. 1, or 0 if either is missing.
int readSettingsStore(DatabaseSettings& settings);

// Writes these two to the settings store; an empty one is left as it stands there. 1, or 0 if the store can't
// be written.
int writeSettingsStore(const DatabaseSettings& settings);

// Reads the settings file of that database. 1, or 0 if it can't be opened.
int readDatabaseFile(DatabaseSettings& settings);

// Makes or replaces the settings file of that database with its directory and its colour. 1, or 0 if it can't
// be written; GetLastError then tells why. The directory has to fit into a line: at most 598 bytes, no line
// end.
int writeDatabaseFile(const DatabaseSettings& settings);

// Both of these; none on success, else what to tell the person.
const char* readSettings(DatabaseSettings& settings);

extern const char* const notStartedText;      // the settings store lacks a value
extern const char* const noValidDatabaseText; // the settings file can't be opened
