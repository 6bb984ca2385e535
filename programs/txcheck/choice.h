// Which database is meant: the directory of the command line, a database of a home directory, or the current
// one of the settings.
#pragma once

#include <optional>
#include <string>

#include "options.h"

// The database directory. None if there is no such, which has been told.
std::optional<std::string> chooseDirectory(const Options& options);
