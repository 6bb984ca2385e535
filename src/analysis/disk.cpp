// The solutions that take effect on the disk at once: files are deleted, and directories made. While planning
// the disk is left as it is, and only looks as if it had been done.
#include <algorithm>
#include <functional>
#include <set>
#include <span>

#include "changes/linkednames.h"
#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/system/errors.h"
#include "platform/system/messagebox.h"
#include "platform/system/signalhold.h"
#include "reporting/report.h"

namespace {

constexpr const char* noremoval = "Unable to remove the file '%s'";
constexpr const char* nodirectory = "Unable to create the directory '%s'";
constexpr const char* repeat = "Remove the cause, and repeat the solution.";

std::string message(const char* form, const std::string& path, const std::string& reason) {
    return Text<2400>().format(form, path.c_str()).c_str() + ("\n" + reason);
}

// A file that is to go, or a directory that is to come.
struct Target {
    std::string path;
    bool directory = false;
    FileState known = {}; // as it was when it was looked at; of no file where that is not known
    bool unread = false;
    int fileclass = -1; // of a data file, with its position in the list
    int position = 0;
    enum { left, done, gone } becomes = left;
};

// Deletes files and makes directories in one group.
class AtOnce {
public:
    explicit AtOnce(TSXdatabase& inspected) : database(inspected), tree(*inspected.tree), linked(tree) {
        std::vector<Change> done;
        if (!database.planning)
            ready = database.committer->completeopen(done);
        for (Change& change : done)
            database.addchange(std::move(change));
        if (const Failure failure = tree.begin(); failure && ready) {
            troubles.push_back("The database's directory can't be read any more: " + failure.text());
            ready = false;
        }
    }

    void take(Target& target) { target.directory ? make(target) : remove(target); }

    // True if all that was asked for is done.
    bool run() {
        std::vector<Failure> failures(group.size());
        if (ready && (database.planning ? plan(failures) : database.committer->commit(group, failures)))
            for (std::size_t i = 0; i < group.size(); ++i)
                settle(i, failures[i]);
        else
            ready = false;
        reportall(troubles);
        return ready && troubles.empty() && !database.committer->isopen();
    }

private:
    void remove(Target& file) {
        Change change = deletionof(tree.spelled(file.path), {});
        const std::string why = whykept(file, change);
        if (!why.empty()) {
            troubles.push_back(message(noremoval, file.path, why));
            return;
        }
        if (change.parts[0] == Standing::after) // what has gone is what was asked for
            file.becomes = Target::gone;
        else
            add(std::move(change), file);
    }

    void make(Target& target) {
        Change change = makingof(tree.spelled(target.path), EntryState::directory);
        change.parts = {Standing::before};
        Entry entry;
        std::string why;
        if (const Failure failure = tree.look(change.file, Links::refused, entry))
            why = failure.text() + "\n" + repeat;
        else if (!entry.outside.empty())
            why = outside(entry);
        else if (entry.state.kind != EntryState::missing)
            why = obstacle(change.file);
        if (why.empty())
            add(std::move(change), target);
        else
            troubles.push_back(message(nodirectory, target.path, why));
    }

    void add(Change change, Target& target) {
        targets.push_back(&target);
        group.push_back(std::move(change));
    }

    static std::string outside(const Entry& entry) {
        return "'" + entry.outside +
               "' is a link that leads out of the database, and nothing is changed there.\nPut the directory "
               "itself in "
               "its place, and repeat the solution.";
    }

    // Why something that stands there under that name does not serve as the directory.
    std::string obstacle(const std::string& name) {
        const Failure failure = tree.enter(name);
        if (!failure)
            return "It has been made meanwhile.\nRebuild the list.";
        if (failure.isAbsence())
            return "A file of that name stands there, and no directory.\nMove it away, and repeat the "
                   "solution.";
        return failure.text() + "\nGive the right to enter it, and rebuild the list.";
    }

    // Why a file is to be left; nothing if it may be deleted, or has gone.
    std::string whykept(const Target& file, Change& change) {
        Entry entry;
        if (file.unread)
            return "It could not be read, so it can't be known whether it is empty.\n"
                   "Put that right, and inspect the database again.";
        Failure failure = tree.look(change.file, Links::refused, entry);
        if (!failure && !entry.outside.empty())
            return outside(entry);
        if (!failure)
            failure = draftdeletion(tree, file.known, change);
        if (failure.number == ERROR_FILE_INVALID)
            return "Another program has changed it since it was looked at.\n"
                   "Inspect the database again, and look at it anew.";
        if (failure.isAbsence())
            change.parts = {Standing::after};
        else if (failure)
            return failure.text() + "\n" + repeat;
        else
            change.othername = linked.other(change.file, change.state);
        return {};
    }

    bool plan(std::vector<Failure>& failures) {
        for (std::size_t i = 0; i < group.size(); ++i) {
            failures[i] = targets[i]->directory ? tree.planDirectory(group[i].file)
                                                : tree.planRemoval(group[i].file, group[i].judged);
            group[i].made = !failures[i];
        }
        return true;
    }

    void settle(std::size_t i, Failure failure) {
        Change& change = group[i];
        if (change.made || isdone(change))
            targets[i]->becomes = Target::done;
        if (failure)
            troubles.push_back(message(targets[i]->directory ? nodirectory : noremoval, targets[i]->path,
                                       failure.text() + "\n" + repeat));
        if (change.made)
            database.addchange(std::move(change));
    }

    TSXdatabase& database;
    Tree& tree;
    LinkedNames linked;
    bool ready = true;
    std::vector<Change> group; // side by side with the targets
    std::vector<Target*> targets;
    std::vector<std::string> troubles;
};

// Files of a class that may hold no record; what is unread among them is told.
void addempty(const TSXdatabase& database, int fileclass, std::vector<Target>& targets) {
    if (fileclass < 0 || fileclass > database.lastlist)
        return;
    const TSXfilelist& list = *database.lists[static_cast<std::size_t>(fileclass)];
    for (int i = 1; i <= list.count; ++i) {
        const TSXdatafile& file = *list.files[static_cast<std::size_t>(i)];
        if (file.isempty())
            targets.push_back({file.path.c_str(), false, file.onread, file.unread, fileclass, i});
    }
}

void addcorrupt(const TSXdatabase& database, int fileclass, int position, std::vector<Target>& targets) {
    if (fileclass < 0 || fileclass > database.lastlist)
        return;
    const TSXfilelist& list = *database.lists[static_cast<std::size_t>(fileclass)];
    if (position < 1 || position > list.count)
        return;
    const TSXdatafile& file = *list.files[static_cast<std::size_t>(position)];
    targets.push_back({file.path.c_str(), false, file.onread, file.unread, fileclass, position});
}

void addside(const TSXdatabase& database, const char* fullpath, std::vector<Target>& targets) {
    targets.push_back({fullpath, false, {}, database.isunread(fullpath)});
    for (const auto& problem : database.problems)
        if (problem != nullptr && problem->kind == corruptsidefile && problem->name.view() == fullpath)
            targets.back().known = problem->looked;
}

// Files that go leave their lists, the last first, so that each position stays right.
void leavelists(TSXdatabase& database, const std::vector<Target>& targets) {
    std::set<std::pair<int, int>, std::greater<>> places;
    for (const Target& target : targets)
        if (target.becomes != Target::left && target.fileclass >= 0)
            places.emplace(target.fileclass, target.position);
    for (const auto& [fileclass, position] : places)
        database.lists[static_cast<std::size_t>(fileclass)]->removeat(position);
}

int carryout(TSXdatabase& database, std::vector<Target>& targets) {
    AtOnce work(database);
    for (Target& target : targets)
        work.take(target);
    const bool all = work.run();
    leavelists(database, targets);
    return all ? 1 : 0;
}

// What the solution of a problem deletes or makes.
void addtargets(const TSXproblem& problem, std::vector<Target>& targets) {
    if (problem.kind == emptyfiles)
        addempty(problem.database, problem.subkind, targets);
    else if (problem.kind == corruptdatafile)
        addcorrupt(problem.database, problem.subkind, problem.fileindex, targets);
    else if (problem.kind == corruptsidefile)
        addside(problem.database, problem.name, targets);
    else if (problem.kind == missingdirectory)
        targets.push_back({problem.name.c_str(), true});
}

} // namespace

int TSXdatabase::removeemptyfiles(int fileclass) {
    std::vector<Target> targets;
    addempty(*this, fileclass, targets);
    return fileclass >= 0 && fileclass <= lastlist ? carryout(*this, targets) : 0;
}

int TSXdatabase::deletecorruptfile(int fileclass, int position) {
    std::vector<Target> targets;
    addcorrupt(*this, fileclass, position, targets);
    return targets.empty() ? 0 : carryout(*this, targets);
}

int TSXdatabase::deletefile(const char* fullpath) {
    std::vector<Target> targets;
    addside(*this, fullpath, targets);
    return carryout(*this, targets);
}

int TSXdatabase::createdirectory(const char* fullpath) {
    std::vector<Target> targets{{fullpath, true}};
    return carryout(*this, targets);
}

std::vector<int> TSXdatabase::solvetogether(const std::vector<const TSXproblem*>& chosen) {
    std::vector<Target> targets;
    std::vector<std::size_t> ends; // in it, of the targets of each problem
    for (const TSXproblem* problem : chosen) {
        addtargets(*problem, targets);
        ends.push_back(targets.size());
    }
    carryout(*this, targets);
    std::vector<int> results;
    for (std::size_t first = 0, i = 0; i < ends.size(); first = ends[i++]) {
        const auto own = std::span(targets).subspan(first, ends[i] - first);
        const auto is = [&](auto becomes) {
            return [becomes](const Target& target) { return target.becomes == becomes; };
        };
        results.push_back(std::ranges::any_of(own, is(Target::left))   ? 0
                          : std::ranges::all_of(own, is(Target::gone)) ? 2
                                                                       : 1);
    }
    return results;
}
