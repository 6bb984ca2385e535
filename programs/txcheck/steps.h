// The repairs of the command line in their order, each problem as it stands when its turn has come.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "known.h"
#include "model/database.h"
#include "options.h"

constexpr int resultGone = 2; // beside 1 done and 0 failed: the problem was not there any more

// A solution that was applied, or whose problem had gone.
struct SolvedStep {
    int row;
    std::string id;
    int command;
    std::string label;
    std::string message; // of the problem
    int result;
};

class Steps {
public:
    Steps(TSXdatabase& inspected, const Options& given, Known& accepted)
        : database(inspected), options(given), known(accepted) {}

    // Takes the steps, behind a load; the save, which is given, is the last. A step that fails ends the work,
    // and those that are left out are told.
    void run(const std::function<bool()>& save);
    bool refuse(const std::string& text); // tells what could not be done; false
    // What an analysis can't read may come and go with each; every thing is told once.
    void tellUnread();

    std::vector<SolvedStep> solved;
    bool found = false;  // the load found a problem that is not accepted
    bool failed = false; // something that was to be done could not be done
    bool ended = false;  // the person has ended the work before its end

private:
    // A problem as it was at the load; pointers to problems don't outlive an analysis, and ids do.
    struct Loaded {
        std::string id, message;
        std::int32_t kind;
    };
    // The number of the solution for a problem in a row; 0: none.
    using Choice = std::function<int(const TSXproblem&, int)>;
    struct Step {
        std::string name;
        std::function<bool()> take;
    };

    void noteLoaded();
    std::vector<Step> listSteps(const std::function<bool()>& save);
    int rowOf(const std::string& id) const;
    const Loaded* atLoad(const SolveStep& step) const;
    bool solve(const SolveStep& step);
    bool solveAll(const SolveStep& step);
    bool solveTogether(const SolveStep& step);
    bool solveRow(int row, int number, const std::string& given);
    bool solveEach(const Choice& choose, const std::string& given, bool goOn);
    bool preen();
    bool changeKey(const ChangeKeyStep& step);
    bool rename(const RenameStep& step);
    bool finishChange(int result);
    void analyse();
    void noteUnread();
    bool goesOn();

    TSXdatabase& database;
    const Options& options;
    Known& known;
    std::set<std::string> toldUnread;
    std::vector<Loaded> loaded; // the rows after the load, from 0; only where a step speaks of one
};
