// One run over a database: the hold, the load, the steps of the command line in their order, the save. What
// happened stands in the fields for the reports.
#pragma once

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "model/database.h"
#include "options.h"
#include "platform/system/hold.h"

// A solution that was applied.
struct SolvedStep {
    int row;
    int command;
    std::string label;
    std::string message; // of the problem
    int result;          // 1 done, 0 failed
};

class Session {
public:
    explicit Session(const Options& given);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    // Takes hold of the database and starts the log. False when that can't be done, which has been told;
    // nothing else has been touched then.
    bool open(const std::string& directory);
    // Loads the database and takes the steps.
    void run();
    // One of the exit statuses.
    int status() const;

    TSXdatabase database;
    std::vector<SolvedStep> solved;
    bool saved = false; // a save was asked for, and nothing is left unsaved

private:
    bool hold(const std::string& directory);
    bool readable(const std::string& directory);
    int answer(const char* text, const char* title, std::uint32_t flags);
    void showProgress(const TSXdatafile& file);
    void clearProgress();
    void warnOfUnopened();
    void analyse();
    bool solve(int row, int number);
    void preen();
    bool changeKey(const ChangeKeyStep& step);
    void save();
    bool refuse(const std::string& text);

    const Options& options;
    HANDLE marker = INVALID_HANDLE_VALUE;
    bool found = false;  // any analysis of the run found a problem
    bool failed = false; // something that was to be done could not be done
    int filesRead = 0;
    long recordsRead = 0;
};
