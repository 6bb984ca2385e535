#include "changes/commit.h"

#include <ctime>

#include "changes/carryout.h"
#include "platform/system/messagebox.h"
#include "platform/system/person.h"
#include "platform/system/signalhold.h"
#include "reporting/notify.h"

namespace {

constexpr const char* stillopen = "An earlier change is not on the disk yet as a whole, and nothing else is "
                                  "changed before it is. It is tried again "
                                  "at the next change and by the next run";

void warn(const std::string& text) {
    notify(text.c_str(), "Warning", MB_OK | MB_ICONINFORMATION);
}

} // namespace

bool Committer::refuse(const std::string& why) const {
    notify((why + "\nNothing was changed").c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
    return false;
}

bool Committer::goOnWithout(const std::string& why) const {
    if (!options_.ask)
        return refuse(why);
    return notify((why + "\nGo on without?").c_str(), "Warning", MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}

bool Committer::journal(std::vector<Change>& group) {
    if (!options_.keepundo)
        return true;
    const bool first = writer_.path().empty();
    if (const std::string why = writer_.keep(*tree_, group); !why.empty())
        return goOnWithout("The changes could not be kept in an undo file, and can't be undone without it: " +
                           why);
    if (first && !writer_.unfound().empty())
        warn("Should this run be interrupted, the next one will not find the undo file " + writer_.path() +
             " by itself: " + writer_.unfound());
    return true;
}

// Should the run be interrupted, whoever comes next has to know.
bool Committer::announce() {
    ChangeAtWork change{writer_.name(),
                        writer_.number(),
                        writer_.group(),
                        username(currentuser()),
                        hostname(),
                        std::time(nullptr),
                        {}};
    if (change.number == 0) // there is no undo file
        change.number = randomnumber();
    Failure failure = tree_->fullPath(change.directory);
    failure = failure ? failure : atwork_.begin(*tree_, change);
    tree_->numberTemporaries(failure ? 0 : change.number);
    return !failure || goOnWithout(std::string("The file '") + AtWork::name +
                                   "' can't be made in the directory of the database (" + failure.text() +
                                   "). Without it nobody will know if the change is interrupted");
}

bool Committer::commit(std::vector<Change>& group, std::vector<Failure>& failures) {
    const SignalHold untildone;
    failures.assign(group.size(), {});
    if (group.empty())
        return true;
    if (!closed.empty())
        return refuse(closed);
    if (isopen() || (atwork_.stands() && atwork_.end(*tree_)))
        return refuse(stillopen);
    if (options_.holds)
        if (const Failure failure = options_.holds())
            return refuse("The database is not held any more: " + failure.text());
    if (!journal(group))
        return false;
    if (!announce()) {
        if (!atwork_.stands()) // else the next run has to learn that nothing of the group was done
            writer_.drop();
        return false;
    }
    if (applyall(*tree_, group, failures) || !end())
        open_ = group;
    return true;
}

bool Committer::end() {
    tree_->numberTemporaries(0);
    if (const std::string why = writer_.finish(); !why.empty()) // no harm but to the list of undo files
        warn("The changes were made, but not marked as finished: " + why);
    if (!atwork_.stands())
        return true;
    const Failure failure = atwork_.end(*tree_);
    if (failure)
        warn(std::string("The changes were made, but the file '") + AtWork::name +
             "' could not be taken away again: " + failure.text());
    return !failure;
}

bool Committer::completeopen(std::vector<Change>& done) {
    if (!isopen())
        return true;
    const SignalHold untildone;
    std::vector<Failure> failures;
    std::vector<bool> before;
    Failure away;
    for (Change& change : open_) {
        before.push_back(change.made);
        if (const Failure failure = look(*tree_, change))
            away = failure;
    }
    if (away || applyall(*tree_, open_, failures) || !end())
        return refuse(stillopen + (away ? " (" + away.text() + ")" : std::string()));
    for (std::size_t i = 0; i < open_.size(); ++i)
        if (open_[i].made && !before[i])
            done.push_back(std::move(open_[i]));
    open_.clear();
    return true;
}
