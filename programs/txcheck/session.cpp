#include "session.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sstream>

#include "analysis/progress.h"
#include "changes/restore.h"
#include "changes/undodirectory.h"
#include "concern.h"
#include "ending.h"
#include "model/marker.h"
#include "model/problem.h"
#include "pageform.h"
#include "platform/system/errors.h"
#include "platform/system/messagebox.h"
#include "reporting/log.h"
#include "reporting/notify.h"
#include "textfile.h"
#include "told.h"

namespace {

// A text of several lines, as a message box shows it.
std::string inOneLine(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
        const std::size_t end = std::min(text.find_first_not_of('\n', at), text.size());
        text.replace(at, end - at, end - at == 1 ? ". " : " ");
    }
    return text;
}

// Why no database can be checked under that path; empty where one can. What lies below a directory that can't
// be read is unknown as a whole.
std::string obstacle(Tree& tree, const std::string& directory) {
    constexpr std::size_t longest = decltype(TSXdatabase::directory)::capacity() - 1;
    if (directory.empty())
        return "The path of the database directory is empty";
    if (directory.size() > longest)
        return "The path of the database directory is too long: it has at most " + std::to_string(longest) +
               " bytes";
    std::vector<std::string> names;
    Failure failure = tree.open(directory);
    if (!failure)
        failure = tree.names(".", names);
    if (failure)
        return directory + ": Unable to read the database directory (Error code " +
               std::to_string(failure.number) + ": " + failure.text() +
               "). Give one that is there and that you may read";
    return isDatabase(tree) ? std::string() : noDatabaseText(directory.c_str());
}

// Makes sure that a database is there and can be read, opens the tree and takes hold of it by the marker.
// Empty on success, else why it can't be done; nothing has been touched then. A plan makes no marker.
std::string takeHold(Tree& tree, const std::string& directory, const Options& options, HANDLE& marker) {
    if (std::string text = obstacle(tree, directory); !text.empty())
        return text;
    Entry there;
    const bool missing = options.plan && !tree.look(markerName, Links::unfollowed, there) &&
                         there.state.kind == FileState::missing;
    if (options.noLock || missing)
        return {};
    marker = openMarker(tree);
    if (marker != INVALID_HANDLE_VALUE)
        return {};
    const std::string advice = lockAdvice(directory.c_str());
    return directory + "/" + markerName + ": " + inOneLine(lockFailureText() + advice);
}

} // namespace

Session::Session(const Options& given, Together& with, std::string name)
    : database(""), label(std::move(name)), steps(database, given, known), options(given), together(with) {
    tellOf(with.several ? label : "");
    database.planning = options.plan;
    setNotifier([this](const char* text, const char* title, std::uint32_t flags) {
        return answer(text, title, flags);
    });
}

Session::~Session() {
    endLog();
    setNotifier({});
    if (marker != INVALID_HANDLE_VALUE)
        CloseHandle(marker);
}

int Session::answer(const char* text, const char* title, std::uint32_t flags) {
    std::istringstream lines(std::string(title) + ": " + text);
    std::string first;
    std::getline(lines, first);
    const bool asked = (flags & MB_TYPEMASK) == MB_YESNO;
    tell(first + (!asked ? "" : options.yes ? " Yes" : " No (--yes would say Yes)"));
    for (std::string line; std::getline(lines, line);)
        tell("  " + line);
    if (!asked && (flags & MB_ICONMASK) != MB_ICONINFORMATION)
        steps.failed = true;
    return !asked ? IDOK : (options.yes ? IDYES : IDNO);
}

bool Session::open(const std::string& directory) {
    if (const std::string failure = options.known ? known.read(*options.known, directory) : "";
        !failure.empty())
        return steps.refuse(failure);
    if (const std::string failure = takeHold(*database.tree, directory, options, marker); !failure.empty())
        return steps.refuse(failure);
    if (!finishEarlier())
        return false;
    if (hasConnectedDatabase(*database.tree))
        tell(std::string("Warning: ") + connectedDatabaseText + " It goes on");
    if (options.log && !startLog(1, options.log->c_str()))
        return false;
    database.directory = directory.c_str();
    for (const std::string& text : earlier.texts)
        logLine(text.c_str());
    database.committer = std::make_unique<Committer>(database.tree, commitOptions());
    if (earlier.outcome == Finished::left)
        database.committer->closed = "An interrupted change waits to be finished";
    return true;
}

// What a run that was interrupted has left half done must not be read as if it were whole.
bool Session::finishEarlier() {
    earlier = finishinterrupted(*database.tree, options.noLock || options.plan ? Wish::look
                                                : options.forgetInterrupted    ? Wish::forget
                                                                               : Wish::finish);
    for (const std::string& text : earlier.texts)
        tell(text);
    steps.failed = steps.failed || earlier.outcome == Finished::left;
    return earlier.outcome != Finished::busy || steps.refuse("The database is left alone");
}

CommitOptions Session::commitOptions() {
    const auto holds = [this] {
        return marker == INVALID_HANDLE_VALUE ? Failure() : holdStands(marker, *database.tree, markerName);
    };
    return {.keepundo = !options.noUndo, .undofile = options.undo.value_or(""), .holds = holds};
}

// The last undo file of a change of the same database that was made after that one and not taken back.
std::string Session::laterUndoFile(const std::string& undoFile) const {
    std::string later;
    bool behind = false;
    for (const UndoListEntry& entry : listundofiles(database.directory.c_str())) {
        std::error_code error;
        const UndoHeader& header = entry.header;
        if (std::filesystem::equivalent(entry.path, undoFile, error))
            behind = true;
        else if (behind && header.isrestore == 0 && header.restoredfrom == UndoHeader::never)
            later = entry.path;
    }
    return later;
}

std::string Session::undoFile() const {
    return ownUndoFile.empty() && database.committer ? database.committer->undopath() : ownUndoFile;
}

void Session::restoreFrom(const std::string& undoFile) {
    endBetweenSteps();
    RestoreResult result;
    if (earlier.outcome == Finished::left && !options.plan)
        result.refused = "Nothing is restored while an interrupted change waits to be finished";
    else
        result = restore(database.tree, {.undofile = undoFile,
                                         .yes = options.yes,
                                         .plan = options.plan,
                                         .recorded = !options.directoryGiven(),
                                         .commit = commitOptions()});
    for (const std::string& text : result.left)
        steps.refuse(text);
    if (!result.refused.empty())
        steps.refuse(result.refused);
    steps.failed = steps.failed || result.open;
    if (const std::string later = result.left.empty() ? "" : laterUndoFile(undoFile); !later.empty())
        tell("Another change was made after that one: restore " + later + " first");
    ownUndoFile = result.ownundofile;
    for (Change& change : result.changes)
        database.addchange(std::move(change));
    run();
}

void Session::run() {
    {
        std::optional<Progress> progress;
        if (options.progress)
            progress.emplace(database, [](int /*percent*/, const std::string& text) { tellProgress(text); });
        database.load(std::string(database.directory).c_str());
    }
    loaded = true;
    endProgress();
    steps.tellUnread();
    endBetweenSteps();
    steps.run([this] { return save(); });
    for (const std::string& text : known.goneFrom(database))
        tell("Warning: " + *options.known + ": " + text);
    if (options.explain)
        findExplained();
    if (options.writeKnown)
        writeKnown();
    if (options.all)
        database.showallkeys();
    if (options.report)
        writePage();
    endAtOnce(status());
}

void Session::findExplained() {
    const std::string& what = *options.explain;
    for (int row = 1; row <= database.problemcount && explained == 0; ++row)
        if (what == std::to_string(row) || what == database.getproblem(row)->id())
            explained = row;
    for (const Unread& thing : database.unread)
        if (what == idOf(thing))
            explainedUnread = &thing;
    if (explained == 0 && explainedUnread == nullptr)
        steps.refuse("--explain " + what + ": there is no such problem");
}

// Of all databases so far, so that the file is whole whenever the work ends.
void Session::writeKnown() {
    if (together.known.empty())
        together.known = "# What is accepted as it is, for txcheck --known: id, number, digests\n";
    if (together.several)
        together.known += '@' + encodedforid(database.directory.view()) + '\n';
    together.known += knownLines(database);
    TextFile file;
    std::string failure = file.open(*options.writeKnown, together.directories);
    if (failure.empty()) {
        file.out() << together.known;
        failure = file.close();
    }
    if (!failure.empty())
        steps.refuse(failure);
}

void Session::writePage() {
    std::string failure = together.page.add(*this, options, together.lines.size() + 1);
    if (failure.empty() && !together.several)
        failure = together.page.end({});
    if (!failure.empty())
        steps.refuse(failure);
}

bool Session::save() {
    const bool complete = database.saveall() == 1;
    saved = complete && !options.plan;
    steps.failed = steps.failed || !complete;
    return true;
}

int Session::status() const {
    const int failed = (steps.failed ? statusFailed : 0) | (steps.ended ? statusEnded : 0);
    if (options.restore || !loaded)
        return failed;
    const int unread = known.unreadIn(database) > 0 ? statusFailed : 0;
    if (options.plan)
        return failed | unread | (steps.found ? statusLeft : 0);
    const bool changed = earlier.changed || !database.changes.empty();
    const bool left = known.unknownIn(database) > 0 || database.ismodified() == 1;
    return failed | unread | (changed ? statusChanged : 0) | (left ? statusLeft : 0);
}
