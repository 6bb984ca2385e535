// The settings file of a database in the home directory, which names the directory of the database tree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/system/text.h"

// Bytes of a line of the settings file; a longer one is taken as several.
constexpr std::size_t maxsettingsline = 598;

struct DatabaseSettings {
    Text<2000> homeDirectory;     // holds the database settings files and the log
    Text<2000> currentDatabase;   // the database's name
    Text<2000> databaseDirectory; // holds the database tree; empty if the settings file doesn't name it
    std::int32_t backgroundColour[3] = {192, 192, 192}; // red, green, blue; read by nothing
};

std::string settingsFilePath(const DatabaseSettings& settings);

// The names of the databases whose settings files are in a home directory, in their order.
std::vector<std::string> databaseNames(const std::string& home);

// Reads the settings file of that database. False if it can't be opened or read;
// GetLastError then tells why.
bool readSettingsFile(DatabaseSettings& settings);

// Makes or replaces the settings file of that database with its directory and its colour. False if it can't
// be written; GetLastError then tells why. The directory has to fit into a line: at most 598 bytes, no line
// end.
bool writeSettingsFile(const DatabaseSettings& settings);
