#include "steps.h"

#include <algorithm>
#include <set>

#include "ending.h"

#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/letters.h"
#include "terminal.h"
#include "told.h"

namespace {

SolvedStep record(const TSXproblem& problem, int row, std::string id, int number, int result) {
    return {row,
            std::move(id),
            problem.solutioncommand(number),
            problem.solutionlabel(number),
            problem.message.c_str(),
            result};
}

// The class in whose directory something stands; below 0 for none.
int classOf(const Unread& thing) {
    const std::string_view directory = std::string_view(thing.name).substr(0, thing.name.find('/'));
    int fileclass = fileclasscount - 1;
    while (fileclass >= 0 && !equalIgnoringCase(fileclasses[fileclass].directory, directory))
        --fileclass;
    return fileclass;
}

// What is unread and may shift the number of the type or of an occurrence in it, so that they would speak of
// another record: types and records are counted in the order of the classes. None if there is nothing.
const Unread* shifting(const TSXdatabase& database, int type) {
    const TSXexptype* const counted = database.gettype(type);
    const int first = type == 0 ? 0 : 1;
    const int last = counted != nullptr ? counted->classid : 0;
    const auto found = std::ranges::find_if(database.unread, [&](const Unread& thing) {
        const int fileclass = classOf(thing);
        return thing.weight == Unread::whole && (fileclass < 0 || (fileclass >= first && fileclass <= last));
    });
    return found == database.unread.end() ? nullptr : &*found;
}

} // namespace

Steps::Identity Steps::identityOf(const TSXproblem& problem) {
    return {problem.kind, problem.subkind, problem.name.c_str()};
}

bool Steps::refuse(const std::string& text) {
    tell(text);
    failed = true;
    return false;
}

void Steps::analyse() {
    database.analyse();
    known.forget();
}

bool Steps::goesOn() {
    ended = ended || isAskedToEnd();
    return !ended;
}

void Steps::noteLoaded() {
    found = known.unknownIn(database) > 0;
    for (int row = 1; row <= database.problemcount && !options.solve.empty(); ++row)
        loaded.push_back({identityOf(*database.getproblem(row)), database.getproblem(row)->id()});
}

std::vector<Steps::Step> Steps::listSteps(const std::function<bool()>& save) {
    std::vector<Step> steps;
    for (const SolveStep& step : options.solve)
        steps.push_back({step.given, [&] { return step.kind != 0 ? solveAll(step) : solve(step); }});
    if (options.preen)
        steps.push_back({"--preen", [&] { return preen(); }});
    if (options.changeKey)
        steps.push_back({"--change-key", [&] { return changeKey(*options.changeKey); }});
    if (options.rename)
        steps.push_back({"--rename", [&] { return rename(*options.rename); }});
    if (options.save || options.plan)
        steps.push_back({"--save", save});
    return steps;
}

void Steps::run(const std::function<bool()>& save) {
    noteLoaded();
    const std::vector<Step> steps = listSteps(save);
    std::size_t taken = 0;
    while (taken < steps.size() && goesOn() && steps[taken].take())
        ++taken;
    goesOn(); // for who asked during the last step
    std::string left;
    for (std::size_t i = ended ? taken : taken + 1; i < steps.size(); ++i)
        left += (left.empty() ? "" : ", ") + steps[i].name;
    if (!left.empty())
        tell("Left out, since " + (ended ? "you have ended it" : steps[taken].name + " failed") + ": " +
             left);
    const auto isFailed = [](const SolvedStep& step) { return step.result == 0; };
    if (!database.changes.empty() && std::ranges::any_of(solved, isFailed))
        analyse(); // what was done in part of it counts in types and keys
}

int Steps::rowOf(const Identity& wanted) const {
    for (int row = 1; row <= database.problemcount; ++row)
        if (identityOf(*database.getproblem(row)) == wanted)
            return row;
    return 0;
}

int Steps::rowOf(const std::string& id) const {
    for (int row = 1; row <= database.problemcount; ++row)
        if (database.getproblem(row)->id() == id)
            return row;
    return 0;
}

// The row that the step speaks of in the list after the load; 0 for none.
int Steps::rowAtLoad(const SolveStep& step) const {
    const int count = static_cast<int>(loaded.size());
    if (step.id.empty())
        return step.row >= 1 && step.row <= count ? step.row : 0;
    for (int row = 1; row <= count; ++row)
        if (loaded[static_cast<std::size_t>(row) - 1].id == step.id)
            return row;
    return 0;
}

bool Steps::solve(const SolveStep& step) {
    if (const int atLoad = rowAtLoad(step); atLoad != 0) {
        const Loaded& meant = loaded[static_cast<std::size_t>(atLoad) - 1];
        const int row = rowOf(meant.problem);
        return row != 0 ? solveRow(row, step.number, step.given) : passGone(meant, step);
    }
    if (step.id.empty())
        return refuse(step.given + ": the list has " +
                      counted(static_cast<long>(loaded.size()), "row", "rows"));
    const int row = rowOf(step.id);
    return row != 0 ? solveRow(row, step.number, step.given)
                    : refuse(step.given + ": there is no such problem");
}

bool Steps::passGone(const Loaded& gone, const SolveStep& step) {
    const Identity& was = gone.problem;
    const TSXproblem problem(database, was.kind, was.subkind, was.name.c_str());
    solved.push_back(record(problem, step.row, gone.id, step.number, resultGone));
    return true;
}

bool Steps::solveRow(int row, int number, const std::string& given) {
    const TSXproblem& problem = *database.getproblem(row);
    if (problem.solutioncommand(number) == 0)
        return refuse(given + ": this problem has " +
                      counted(problem.solutioncount(), "solution", "solutions"));
    solved.push_back(record(problem, row, problem.id(), number, 0));
    const int result = problem.solve(number);
    solved.back().result = result;
    if (result == 0) {
        failed = true;
        return false;
    }
    analyse();
    return true;
}

// Solves the first row for which a solution is chosen, and then looks at the new list from the top. A problem
// is taken once, so that this ends whatever the database holds.
bool Steps::solveEach(const Choice& choose, const std::string& given, bool goOn) {
    std::set<Identity> taken;
    for (int row = 1; row <= database.problemcount && goesOn();) {
        const TSXproblem& problem = *database.getproblem(row);
        const int number = choose(problem, row);
        if (number == 0 || !taken.insert(identityOf(problem)).second)
            ++row;
        else if (solveRow(row, number, given))
            row = 1;
        else if (!goOn)
            return false;
    }
    return !ended;
}

bool Steps::solveAll(const SolveStep& step) {
    const int count = TSXproblem(database, step.kind, 0).solutioncount();
    if (step.number < 1 || step.number > count)
        return refuse(step.given + ": problems of this kind have " + counted(count, "solution", "solutions"));
    if (kindofproblem(step.kind).concernskey == nullptr)
        return solveTogether(step);
    return solveEach(
        [&](const TSXproblem& problem, int) { return problem.kind == step.kind ? step.number : 0; },
        step.given, false);
}

// What deletes or makes goes as one group with one analysis behind it; what comes up then is left.
bool Steps::solveTogether(const SolveStep& step) {
    std::vector<const TSXproblem*> chosen;
    const std::size_t before = solved.size();
    for (int row = 1; row <= database.problemcount; ++row)
        if (const TSXproblem& problem = *database.getproblem(row); problem.kind == step.kind) {
            chosen.push_back(&problem);
            solved.push_back(record(problem, row, problem.id(), step.number, 0));
        }
    const std::vector<int> results = database.solvetogether(chosen);
    for (std::size_t i = 0; i < results.size(); ++i)
        solved[before + i].result = results[i];
    const bool complete = std::ranges::count(results, 0) == 0;
    failed = failed || !complete;
    if (!std::ranges::all_of(results, [](int result) { return result == 0; }))
        analyse();
    return complete;
}

// Where the entries or experiments are not there, as under a share that isn't mounted, what else looks wrong
// is nothing to go by.
bool Steps::preen() {
    const auto safe = [this](const TSXproblem& problem, int row) {
        int number = problem.solutioncount();
        while (number > 0 && problem.solution(number).cost != Cost::safe)
            --number;
        const bool onlyDirectories = database.directorymissing() && problem.kind != missingdirectory;
        return onlyDirectories || known.has(database, row) ? 0 : number;
    };
    return solveEach(safe, "--preen", true);
}

bool Steps::changeKey(const ChangeKeyStep& step) {
    if (const Unread* thing = shifting(database, step.type))
        return refuse("--change-key: '" + thing->name +
                      "' could not be read, and without it types and "
                      "occurrences may have other numbers. Make it readable, and start again");
    TSXkeyentry* entry = database.keytree.find(step.key);
    const int uses = entry != nullptr ? entry->occurrences(step.type) : 0;
    if (step.n < 1 || step.n > uses)
        return refuse("--change-key: the key '" + step.key + "' is used " + counted(uses, "time", "times") +
                      " in experiment type " + std::to_string(step.type) + "; there is no occurrence " +
                      std::to_string(step.n));
    return finishChange(database.changekey(*entry, step.type, step.n, step.newKey.c_str()));
}

bool Steps::rename(const RenameStep& step) {
    const TSXkeyentry* entry = database.keytree.find(step.key);
    if (entry == nullptr || entry->records().empty())
        return refuse("--rename: no record uses the key '" + step.key + "'");
    return finishChange(database.renamekey(*entry, step.newKey.c_str()));
}

// Behind a change of keys that was made, 1, was none, 0, or was refused, -1.
bool Steps::finishChange(int result) {
    if (result == 1)
        analyse();
    failed = failed || result == -1;
    return result != -1;
}
