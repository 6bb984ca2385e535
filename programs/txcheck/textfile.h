// Whole files of the person's own: the list of known problems, a report.
#pragma once

#include <string>
#include <string_view>

// Empty on success, else what could not be done, with the path and the reason.
std::string readTextFile(const std::string& path, std::string& content);
// The same; the file appears whole or not at all. Nothing below the database directory is written.
std::string writeTextFile(const std::string& path, std::string_view content, const char* databaseDirectory);
