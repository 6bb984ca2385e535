// The command line of txstart: work to be done without a window.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct Options {
    std::optional<std::string> home;
    std::optional<std::string> database;
    std::vector<std::string> add; // a name and a directory, or nothing
    bool yes = false;             // add also a directory that holds no database
    bool inspect = false;

    bool nothingAsked() const { return !home && !database && add.empty() && !inspect; }
};

enum Status : int { statusDone = 0, statusFailed = 8, statusUsage = 16 };

// None if the program is to leave with the status: help was given, or the words are wrong, which has been
// told.
std::optional<Options> parseOptions(int argc, char** argv, int& status);
