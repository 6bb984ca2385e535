// The command line of txcheck.
#pragma once

#include <optional>
#include <string>
#include <vector>

// A solution of the problem that stands in a row of the list, both counted from 1.
struct SolveStep {
    int row;
    int number;
};

// Occurrence n of a key in an experiment type gets a new key.
struct ChangeKeyStep {
    std::string key;
    int type;
    int n;
    std::string newKey;
};

struct Options {
    std::optional<std::string> directory; // none: the current database of the settings
    bool all = false;
    std::optional<std::string> entry;
    std::vector<SolveStep> solve;
    bool preen = false;
    std::optional<ChangeKeyStep> changeKey;
    bool yes = false;
    bool save = false;
    std::optional<std::string> log;
    bool noLock = false;
    bool json = false;
    bool progress = false;
};

// Reads the command line. Without a value the program is to leave with the status; what there was to say has
// been said.
std::optional<Options> parseOptions(int argc, char** argv, int& status);
