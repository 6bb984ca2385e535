// The command line of txcheck.
#pragma once

#include <optional>
#include <string>
#include <vector>

// A solution of one problem, or of all of a kind.
struct SolveStep {
    std::string given; // as the command line has it
    int row = 0;       // of the list after the load, from 1, or
    std::string id;    // the problem's id, or
    int kind = 0;      // all of that kind
    int number = 0;    // of the solution, from 1
};

// Occurrence n of a key in an experiment type gets a new key.
struct ChangeKeyStep {
    std::string key;
    int type;
    int n;
    std::string newKey;
};

// All records that use a key get a new one.
struct RenameStep {
    std::string key;
    std::string newKey;
};

struct Options {
    std::vector<std::string> directories; // none: the current database of the settings
    std::optional<std::string> home;      // in place of that of the settings
    std::optional<std::string> database;  // a database of the home directory, by name
    bool every = false;                   // all of them
    bool directoryGiven() const { return !directories.empty() || database || home; }
    // Whether several databases are meant; how many is not known before.
    bool several() const { return every || directories.size() > 1; }
    bool all = false;
    std::optional<std::string> entry;
    std::vector<SolveStep> solve; // in the order given
    bool preen = false;
    std::optional<ChangeKeyStep> changeKey;
    std::optional<RenameStep> rename;
    bool yes = false;
    bool save = false;
    bool plan = false;                     // nothing is written
    std::optional<std::string> explain;    // a row or an id
    std::optional<std::string> known;      // a file
    std::optional<std::string> writeKnown; // a file
    std::optional<std::string> report;     // an HTML file
    std::optional<std::string> log;
    bool forgetInterrupted = false;
    std::optional<std::string> undo;    // a file
    std::optional<std::string> restore; // a file
    bool noUndo = false;
    bool undoList = false;
    bool noLock = false;
    bool quiet = false;
    bool json = false;
    bool progress = false;
};

// Reads the command line. Without a value the program is to leave with the status; what there was to say has
// been said.
std::optional<Options> parseOptions(int argc, char** argv, int& status);
