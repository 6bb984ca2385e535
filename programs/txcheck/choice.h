// Which databases are meant: the directories of the command line, those of a home directory, or the current
// one of the settings.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options.h"

struct Chosen {
    std::string label; // as the person knows it
    std::string directory;
};
// None if there is none, which has been told.
std::optional<std::vector<Chosen>> chooseDatabases(const Options& options);
