// What the start-up program does: it knows the databases of the home directory, adds one, and makes one the
// current database. Each operation that can fail gives the reason in words, empty on success.
#pragma once

#include <string>

#include "platform/system/startprogram.h"

// The home directory and the current database of the settings store; empty where there is none.
std::string currentHome();
std::string currentDatabaseName();

// The directory that the settings file of the database names; empty if there is none.
std::string directoryOfDatabase(const std::string& home, const std::string& name);

// Makes the directory the home directory of the settings store, under its absolute path.
std::string chooseHome(const std::string& home);
// Makes a database of the home directory the current one.
std::string chooseDatabase(const std::string& home, const std::string& name);
// Why the directory may not be meant: nothing of a database stands in it; empty where something does.
std::string doubtOf(const std::string& directory);
// Writes a new settings file for the database in the directory, under its absolute path.
std::string addDatabase(const std::string& home, const std::string& name, const std::string& directory);
// Writes another directory into the settings file of a database, as when that has moved.
std::string moveDatabase(const std::string& home, const std::string& name, const std::string& directory);
// Deletes the settings file of a database; the database itself is not touched.
std::string forgetDatabase(const std::string& home, const std::string& name);
// Starts the tool, which takes the current database.
std::string startInspecting(StartedProgram& tool);
extern const char* const endedEarly; // what is told where it tells nothing itself
// The same, and waits until its window stands.
std::string inspectCurrent();
