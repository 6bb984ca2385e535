#include "steps.h"

#include <algorithm>

#include "ending.h"

#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/letters.h"
#include "textform.h"
#include "told.h"

namespace {

SolvedStep record(const TSXproblem& problem, int row, int number) {
    const KindOfProblem::Solution& solution = problem.solution(number);
    return {row, problem.id(), solution.command, solution.label, problem.message, 0};
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

bool Steps::refuse(const std::string& text) {
    tell(text);
    failed = true;
    return false;
}

void Steps::analyse() {
    database.analyse();
    known.forget();
    noteUnread();
}

void Steps::tellUnread() {
    for (const Unread& thing : database.unread)
        if (toldUnread.insert(thing.name + '\n' + thing.reason).second)
            tellOnly((thing.weight == Unread::told ? "Passed over: " : "Could not read: ") + thing.name +
                     ": " + thing.reason);
}

// The next analysis may be able to read it, but a step has not seen what it would have been for.
void Steps::noteUnread() {
    tellUnread();
    failed = failed || known.unreadIn(database) > 0;
}

bool Steps::goesOn() {
    ended = ended || isAskedToEnd();
    return !ended;
}

void Steps::noteLoaded() {
    found = known.unknownIn(database) > 0;
    for (int row = 1; row <= database.problemcount && !options.solve.empty(); ++row)
        loaded.push_back({database.getproblem(row)->id(), database.getproblem(row)->message,
                          database.getproblem(row)->kind});
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
    if (!steps.empty())
        noteUnread();
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

int Steps::rowOf(const std::string& id) const {
    for (int row = 1; row <= database.problemcount; ++row)
        if (database.getproblem(row)->id() == id)
            return row;
    return 0;
}

// What the step speaks of in the list after the load; none if that has no such row or id.
const Steps::Loaded* Steps::atLoad(const SolveStep& step) const {
    if (step.id.empty())
        return step.row >= 1 && step.row <= static_cast<int>(loaded.size())
                   ? &loaded[static_cast<std::size_t>(step.row) - 1]
                   : nullptr;
    const auto same = std::ranges::find(loaded, step.id, &Loaded::id);
    return same == loaded.end() ? nullptr : &*same;
}

bool Steps::solve(const SolveStep& step) {
    const Loaded* meant = atLoad(step);
    if (meant == nullptr && step.id.empty())
        return refuse(step.given + ": the list has " +
                      counted(static_cast<long>(loaded.size()), "row", "rows"));
    if (const int row = rowOf(meant != nullptr ? meant->id : step.id); row != 0)
        return solveRow(row, step.number, step.given);
    if (meant == nullptr)
        return refuse(step.given + ": there is no such problem");
    const KindOfProblem::Solution& solution = TSXproblem(database, meant->kind, 0).solution(step.number);
    solved.push_back({step.row, meant->id, solution.command, solution.label, meant->message, resultGone});
    return true;
}

bool Steps::solveRow(int row, int number, const std::string& given) {
    const TSXproblem& problem = *database.getproblem(row);
    if (problem.solutioncommand(number) == 0)
        return refuse(given + ": this problem has " +
                      counted(problem.solutioncount(), "solution", "solutions"));
    solved.push_back(record(problem, row, number));
    const int result = problem.solve(number);
    solved.back().result = result;
    failed = failed || result == 0;
    if (result != 0)
        analyse();
    return result != 0;
}

// Solves the first row for which a solution is chosen, and then looks at the new list from the top. A problem
// is taken once, so that this ends whatever the database holds.
bool Steps::solveEach(const Choice& choose, const std::string& given, bool goOn) {
    std::set<std::string> taken;
    for (int row = 1; row <= database.problemcount && goesOn();) {
        const TSXproblem& problem = *database.getproblem(row);
        const int number = choose(problem, row);
        if (number == 0 || !taken.insert(problem.id()).second)
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
            solved.push_back(record(problem, row, step.number));
        }
    const std::vector<int> results = database.solvetogether(chosen);
    for (std::size_t i = 0; i < results.size(); ++i)
        solved[before + i].result = results[i];
    const auto failures = static_cast<std::size_t>(std::ranges::count(results, 0));
    failed = failed || failures > 0;
    if (failures < results.size())
        analyse();
    return failures == 0;
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
