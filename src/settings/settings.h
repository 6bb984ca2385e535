// What the per-user settings store keeps: which database is the current one, and where the windows stood.
#pragma once

#include <string>

#include "files/settingsfile.h"

// Reads the home directory and the current database from the settings store. False if either is missing or
// has more than 998 bytes; it is then left as it is.
bool readSettingsStore(DatabaseSettings& settings);

// Writes these two to the settings store; an empty one is left as it stands there. False if the store can't
// be written.
bool writeSettingsStore(const DatabaseSettings& settings);

extern const char* const notStartedText;      // the settings store lacks a value
extern const char* const noValidDatabaseText; // the settings file can't be opened

// Where a window stood when it was closed last, the same for all databases; a text of the window layer, empty
// where none is kept. What can't be written is not remembered, which is no reason to disturb anybody.
std::string readWindowPlacement(const char* window);
void writeWindowPlacement(const char* window, const std::string& placement);

// Under which names the settings store keeps its values and the start-up program is found.
struct Edition {
    int makerId;
    int productId;
    const char* makerName;
    const char* productName;
    const char* startProgram;
};
const Edition& edition(); // that this system is
