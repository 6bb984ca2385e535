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
#include "reporting/notify.h"

namespace {

constexpr const char* repeat = "Remove the cause, and repeat the solution.";

// A file that is to go, or a directory that is to come.
struct Target {
    std::string path;
    bool directory = false;
    FileStamp known = {}; // as it was when it was looked at; of no file where that is not known
    bool unread = false;
    int fileclass = -1; // of a data file, with its position in the list
    int position = 0;
    enum { left, done, gone } becomes = left;
};

// Deletes files and makes directories in one group.
class AtOnce {
public:
    explicit AtOnce(TSXdatabase& inspected) : database(inspected), tree(*inspected.tree), linked(tree) {}

    void run(std::vector<Target>& wanted) {
        const bool complete = database.completeearlier();
        if (const Failure failure = tree.begin(); failure && complete)
            troubles.push_back("The database's directory can't be read any more: " + failure.text());
        else if (complete)
            carryout(wanted);
        notifyall(troubles);
    }

private:
    void carryout(std::vector<Target>& wanted) {
        for (Target& target : wanted)
            draft(target);
        std::vector<Failure> failures(group.size());
        if (database.planning)
            plan(failures);
        else if (!database.committer->commit(group, failures))
            return;
        for (std::size_t i = 0; i < group.size(); ++i)
            settle(group[i], *targets[i], failures[i]);
    }

    void draft(Target& target) {
        const std::string name = tree.spelled(target.path);
        Change change = target.directory ? makingof(name, FileState::directory) : deletionof(name, {});
        const std::string why = target.directory ? whynotmade(change) : whykept(target, change);
        if (!why.empty()) {
            tell(target, why);
        } else if (!target.directory && isdone(change)) { // what has gone is what was asked for
            target.becomes = Target::gone;
        } else {
            targets.push_back(&target);
            group.push_back(std::move(change));
        }
    }

    void tell(const Target& target, const std::string& why) {
        const char* const what = target.directory ? "create the directory" : "remove the file";
        troubles.push_back(std::string("Unable to ") + what + " '" + target.path + "'\n" + why);
    }

    static std::string outside(const Entry& entry) {
        return "'" + entry.outside +
               "' is a link that leads out of the database, and nothing is changed there.\nPut the directory "
               "itself in "
               "its place, and repeat the solution.";
    }

    // Why a directory is not to be made; nothing if it may be.
    std::string whynotmade(Change& change) {
        Entry entry;
        if (const Failure failure = tree.look(change.file, Links::unfollowed, entry))
            return failure.text() + "\n" + repeat;
        if (!entry.outside.empty())
            return outside(entry);
        return entry.state.kind == FileState::missing ? "" : obstacle(change.file);
    }

    // Why something that stands there under that name does not serve as the directory.
    std::string obstacle(const std::string& name) {
        const Failure failure = tree.enter(name);
        if (!failure)
            return std::string("It has been made meanwhile.\nTo see it, ") + inspectAgain + ".";
        if (failure.isAbsence())
            return "A file of that name stands there, and no directory.\nMove it away, and repeat the "
                   "solution.";
        return failure.text() + "\nGive the right to enter it, and rebuild the list.";
    }

    // Why a file is to be left; nothing if it may be deleted, or has gone.
    std::string whykept(const Target& file, Change& change) {
        Entry entry;
        if (file.unread)
            return "It could not be read, so nothing is known of what is in it.\nPut that right, and " +
                   std::string(inspectAgain) + ".";
        Failure failure = tree.look(change.file, Links::unfollowed, entry);
        if (!failure && !entry.outside.empty())
            return outside(entry);
        if (!failure)
            failure = draftdeletion(tree, file.known, change);
        if (failure.number == ERROR_FILE_INVALID)
            return "Another program has changed it since it was looked at.\n"
                   "Before you decide, " +
                   std::string(inspectAgain) + ".";
        if (failure.isAbsence())
            change.parts = {Standing::after};
        else if (failure)
            return failure.text() + "\n" + repeat;
        else
            change.othername = linked.other(change.file, change.state);
        return {};
    }

    void plan(std::vector<Failure>& failures) {
        for (std::size_t i = 0; i < group.size(); ++i) {
            failures[i] = targets[i]->directory ? tree.planDirectory(group[i].file)
                                                : tree.planRemoval(group[i].file, group[i].judged);
            group[i].made = !failures[i];
        }
    }

    void settle(Change& change, Target& target, Failure failure) {
        if (change.made || isdone(change))
            target.becomes = Target::done;
        if (failure)
            tell(target, failure.text() + "\n" + repeat);
        if (change.made)
            database.addchange(std::move(change));
    }

    TSXdatabase& database;
    Tree& tree;
    LinkedNames linked;
    std::vector<Change> group; // side by side with the targets
    std::vector<Target*> targets;
    std::vector<std::string> troubles;
};

Target targetof(const TSXdatafile& file, int position) {
    return {file.path.c_str(), false, file.onread, file.unread, file.classid, position};
}

// Files of a class that may hold no record; what is unread among them is told.
void removeemptyfiles(const TSXfilelist& list, std::vector<Target>& targets) {
    for (int i = 1; i <= list.count; ++i)
        if (const TSXdatafile& file = *list.files[static_cast<std::size_t>(i)]; file.isempty())
            targets.push_back(targetof(file, i));
}

void deletecorruptfile(const TSXfilelist& list, int position, std::vector<Target>& targets) {
    if (position >= 1 && position <= list.count)
        targets.push_back(targetof(*list.files[static_cast<std::size_t>(position)], position));
}

Target createdirectory(const std::string& path) {
    return {path, true};
}

// A side file, of which no object is in memory.
Target deletefile(const TSXproblem& problem) {
    return {problem.name, false, problem.looked, problem.database.isunread(problem.name)};
}

// What the solution of a problem deletes or makes.
void addtargets(const TSXproblem& problem, std::vector<Target>& targets) {
    const TSXdatabase& database = problem.database;
    if (problem.kind == missingdirectory)
        targets.push_back(createdirectory(problem.name));
    else if (problem.kind == corruptsidefile)
        targets.push_back(deletefile(problem));
    else if (problem.subkind >= 0 && problem.subkind <= database.lastlist) {
        const TSXfilelist& list = *database.lists[static_cast<std::size_t>(problem.subkind)];
        problem.kind == emptyfiles ? removeemptyfiles(list, targets)
                                   : deletecorruptfile(list, problem.fileindex, targets);
    }
}

// Files that go leave their lists, the last first, so that each position stays right.
void leavelists(TSXdatabase& database, const std::vector<Target>& targets) {
    std::set<std::pair<int, int>, std::greater<>> positions;
    for (const Target& target : targets)
        if (target.becomes != Target::left && target.fileclass >= 0)
            positions.emplace(target.fileclass, target.position);
    for (const auto& [fileclass, position] : positions)
        database.lists[static_cast<std::size_t>(fileclass)]->removeat(position);
}

// 1 done, 0 failed, 2 what was to go had gone.
int resultof(std::span<const Target> targets) {
    const auto count = [&](auto becomes) { return std::ranges::count(targets, becomes, &Target::becomes); };
    if (count(Target::left) > 0)
        return 0;
    return count(Target::done) > 0 ? 1 : 2;
}

} // namespace

std::vector<int> TSXdatabase::solvetogether(const std::vector<const TSXproblem*>& chosen) {
    std::vector<Target> targets;
    std::vector<std::size_t> ends; // in it, of the targets of each problem
    for (const TSXproblem* problem : chosen) {
        addtargets(*problem, targets);
        ends.push_back(targets.size());
    }
    AtOnce(*this).run(targets);
    std::vector<int> results;
    for (std::size_t first = 0; const std::size_t end : ends) {
        const int result = resultof(std::span(targets).subspan(first, end - first));
        results.push_back(committer->isopen() ? 0 : result); // which may not all be on the disk
        first = end;
    }
    leavelists(*this, targets);
    return results;
}
