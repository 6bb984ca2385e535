// Which database is the current one: two values of the per-user settings store, and the settings file of that
// database in the home directory.
#pragma once

#include <cstdint>

#include "platform/system/text.h"

struct DatabaseSettings {
    Text<2000> homeDirectory;     // holds the database settings files and the log
    Text<2000> currentDatabase;   // the database's name
    Text<2000> databaseDirectory; // holds the database tree; empty if the settings file doesn't name it
    std::int32_t backgroundColour[3] = {};
};

// Reads the home directory and the current database from the settings store. 1, or 0 if either is missing.
int readSettingsStore(DatabaseSettings& settings);

// Reads the settings file of that database. 1, or 0 if it can't be opened.
int readDatabaseFile(DatabaseSettings& settings);

// Both of these; none on success, else what to tell the person.
const char* readSettings(DatabaseSettings& settings);

extern const char* const notStartedText;      // the settings store lacks a value
extern const char* const noValidDatabaseText; // the settings file can't be opened
