#include "changes/finish.h"

#include <cstdlib>
#include <ctime>

#include "changes/atwork.h"
#include "changes/carryout.h"
#include "changes/linkednames.h"
#include "changes/undodirectory.h"
#include "changes/undowriter.h"
#include "platform/system/person.h"
#include "platform/system/signalhold.h"

namespace {

constexpr const char* waysout =
    "Bring it back, or take the database as it stands with txcheck --forget-interrupted "
    "and then take the rest back with --restore";

class Finisher {
public:
    Finisher(Tree& tree, const ChangeAtWork& change) : tree_(tree), change_(change) {}

    Finished run() {
        const SignalHold untildone;
        if (!read())
            return std::move(work_);
        if (const Failure failure = atwork_.adopt(tree_))
            leave("the file '" + std::string(AtWork::name) + "' can't be taken over (" + failure.text() +
                  ")");
        else if (lookatall(); !work_.texts.empty()) // of what is away
            leave(waysout);
        else
            finish();
        return std::move(work_);
    }

private:
    void leave(const std::string& why) {
        work_.outcome = Finished::left;
        work_.texts.insert(work_.texts.begin(), "A change of the database was interrupted, " + change_.who() +
                                                    ", and can't be finished: " + why +
                                                    ". Until then nothing is changed");
    }

    // The group of the undo file that was being carried out.
    bool read() {
        Tree directory;
        std::string why = "it was made without an undo file";
        if (!change_.undo.empty()) {
            const Failure failure = openundodirectory(directory, false);
            why = failure ? undodirectory() + " can't be entered (" + failure.text() + ")"
                          : readundofile(directory, change_.undo, undo_);
            path_ = undodirectory() + "/" + change_.undo;
        }
        if (why.empty() && undo_.header.number != change_.number)
            why = "it is that of another change";
        if (why.empty() && (change_.group < 1 || change_.group > undo_.groups.size()))
            why = "the change is not in it";
        if (why.empty() && isofanother())
            why = "it is about a database whose directory has another owner";
        if (why.empty())
            return true;
        leave("of its undo file " + (change_.undo.empty() ? "" : path_ + " ") + "is said: " + why +
              ". Whoever made the change finishes it by inspecting the database again; or take the database "
              "as it "
              "stands with txcheck --forget-interrupted");
        return false;
    }

    // Who copies the announcement of another's change into a database of their own must not get what that one
    // was about.
    bool isofanother() {
        Entry top;
        const std::vector<DirectoryTimes>& known = undo_.groups[0].directories; // that of the database first
        return tree_.look(".", Links::unfollowed, top) ||
               (top.state.owner != currentuser() &&
                (known.empty() || known[0].state.owner != top.state.owner));
    }

    // What is still to be written must reach no name elsewhere.
    std::string whyclosed(const Change& change) {
        const bool towrite =
            change.kind == Change::keys && (any(change, Standing::before) || any(change, Standing::torn));
        return towrite ? linked_.whyreachesothers(change.judged) : "";
    }

    void lookatall() {
        for (Change& change : undo_.groups[change_.group - 1].changes) {
            if (const Failure failure = look(tree_, change))
                work_.texts.push_back(change.file + ": " + failure.text());
            else if (const std::string why = whyclosed(change); !why.empty())
                work_.texts.push_back(change.file + ": " + why);
            else if (change.kind != Change::deletion)
                group_.push_back(std::move(change));
            else if (change.parts[0] == Standing::after)
                begun_ = true;
            else
                undone_.push_back(change.file + " was to be deleted, and is still there");
        }
    }

    void finish() {
        for (const Change& change : group_)
            begun_ = begun_ || any(change, Standing::after) || any(change, Standing::torn);
        std::vector<Failure> failures;
        if (begun_)
            applyall(tree_, group_, failures);
        end(failures);
    }

    void tellfailures(const std::vector<Failure>& failures) {
        for (std::size_t i = 0; i < failures.size(); ++i)
            if (failures[i])
                work_.texts.push_back(group_[i].file + " can't be written (" + failures[i].text() + ")");
    }

    void end(const std::vector<Failure>& failures) {
        tellfailures(failures);
        if (!work_.texts.empty()) {
            leave(waysout);
            return;
        }
        tree_.removeTemporaries(change_.number);
        if (const Failure failure = atwork_.end(tree_)) {
            leave("the file '" + std::string(AtWork::name) + "' can't be taken away (" + failure.text() +
                  ")");
            return;
        }
        markfinished(path_, undo_.header.number);
        work_.outcome = Finished::done;
        work_.changed = begun_;
        tell();
    }

    void tell() {
        const std::string head = "A change of the database was interrupted, " + change_.who();
        if (!begun_) {
            work_.texts = {head + ", before anything was changed. It was not made"};
            return;
        }
        std::uint32_t fields = 0;
        for (const Change& change : group_) {
            fields += change.fieldcount;
            tellforeign(change);
        }
        work_.texts.insert(work_.texts.begin(),
                           head + ", and was finished: " + std::to_string(fields) +
                               " key fields were looked at. It is taken back with --restore " + path_);
        work_.texts.insert(work_.texts.end(), undone_.begin(), undone_.end());
    }

    void tellforeign(const Change& change) {
        std::size_t part = 0;
        foreachfield(change, [&](const KeyField& field) {
            if (change.parts[part++] == Standing::other)
                work_.texts.push_back(change.file + ", record " + std::to_string(field.record) +
                                      ": other bytes stand at offset " + std::to_string(field.offset) +
                                      "; they are left");
        });
        if (change.kind == Change::making && change.parts[0] != Standing::after)
            work_.texts.push_back(change.file + " was to be made, and another one stands there; it is left");
    }

    Tree& tree_;
    const ChangeAtWork& change_;
    AtWork atwork_;
    LinkedNames linked_{tree_};
    UndoFile undo_;
    std::string path_;
    std::vector<Change> group_; // what comes; deletions that were not done are done no more
    std::vector<std::string> undone_;
    bool begun_ = false;
    Finished work_;
};

// On file systems that keep locks on one host a change of another may be at work.
bool maybeatwork(const ChangeAtWork& change) {
    constexpr std::int64_t tenMinutes = 600;
    return change.host != hostname() && std::abs(std::time(nullptr) - change.time) < tenMinutes;
}

Finished answer(Finished::Outcome outcome, std::string text) {
    return {outcome, false, {std::move(text)}};
}

Finished forget(Tree& tree, const ChangeAtWork& change, const std::string& text) {
    AtWork atwork;
    Failure failure = atwork.adopt(tree);
    if (!failure && change.number != 0)
        tree.removeTemporaries(change.number);
    failure = failure ? failure : atwork.end(tree);
    return failure ? answer(Finished::left, text + " can't be forgotten: the file '" + AtWork::name +
                                                "' can't be taken away (" + failure.text() + ")")
                   : answer(Finished::done, text + " is forgotten; the database is taken as it stands");
}

} // namespace

Finished finishinterrupted(Tree& tree, Wish wish) {
    Trace trace = Trace::none;
    ChangeAtWork change;
    if (const Failure failure = readtrace(tree, trace, change))
        return answer(Finished::busy,
                      std::string("Whether a change of the database was interrupted can't be known: '") +
                          AtWork::name + "' can't be read (" + failure.text() +
                          "). If it is no plain file move it away, else give the right to read it");
    if (trace == Trace::none)
        return {};
    if (trace == Trace::locked || (trace == Trace::interrupted && maybeatwork(change)))
        return answer(
            Finished::busy,
            trace == Trace::locked && change.time == 0
                ? "A change of the database is at work. Try again when it has ended"
                : "A change of the database is at work, " + change.who() +
                      ". Try again when it has ended, or in ten minutes should it have been stopped");
    if (trace == Trace::begun)
        return wish == Wish::look ? Finished()
                                  : forget(tree, change, "An interrupted change that had not begun");
    const std::string text = "A change of the database that was interrupted, " + change.who() + ",";
    if (wish == Wish::forget)
        return forget(tree, change, text);
    if (wish == Wish::look)
        return answer(Finished::left,
                      text + " is not finished: a run with neither --no-lock nor --plan does that first");
    return Finisher(tree, change).run();
}
