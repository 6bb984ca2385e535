#include "changes/restore.h"

#include <set>

#include "changes/carryout.h"
#include "changes/reversal.h"
#include "platform/system/signalhold.h"

namespace {

// The times of directories in which entries came and went, as they were before the first group.
void givetimes(Tree& tree, const UndoFile& undo, std::uint32_t fromgroup, const std::set<std::string>& leftin,
               std::vector<std::string>& left) {
    std::set<std::string> given = leftin;
    for (std::size_t group = fromgroup - 1; group < undo.groups.size(); ++group)
        for (const DirectoryTimes& directory : undo.groups[group].directories) {
            File file;
            if (!given.insert(directory.name).second)
                continue;
            Failure failure =
                tree.openEntry(directory.name.empty() ? "." : directory.name, file, Links::followed);
            if (!failure && file.opened().kind == FileState::directory)
                failure = file.giveTimes(directory.state.read, directory.state.changed);
            if (failure && !failure.isAbsence()) // else it was made, and has gone
                left.push_back(tree.path() + "/" + directory.name +
                               ": its times could not be brought back (" + failure.text() + ")");
        }
}

void telllostnames(Tree& tree, const Reversal& reversal, std::vector<std::string>& left) {
    for (const Change* deletion : reversal.linked) {
        FileState now;
        if (!lookexactly(tree, deletion->file, now) && now.kind == FileState::plain && now.names < 2)
            left.push_back(tree.path() + "/" + deletion->file +
                           ": it had more names, and is a file of its own now");
    }
}

void carryout(const std::shared_ptr<Tree>& tree, const UndoFile& undo, Reversal& reversal,
              RestoreOptions& options, RestoreResult& result) {
    options.commit.isrestore = true;
    Committer committer(tree, options.commit);
    std::vector<Failure> failures;
    if (!committer.commit(reversal.changes, failures)) {
        result.refused = "Nothing was restored";
        return;
    }
    for (std::size_t i = 0; i < failures.size(); ++i)
        if (failures[i]) {
            result.left.push_back(tree->path() + "/" + reversal.changes[i].file +
                                  ": it could not be brought back (" + failures[i].text() + ")");
            reversal.leftin.insert(parentof(reversal.changes[i].file));
        }
    telllostnames(*tree, reversal, result.left);
    givetimes(*tree, undo, options.fromgroup, reversal.leftin, result.left);
    result.open = committer.isopen();
    result.ownundofile = committer.undopath();
    if (result.left.empty())
        markrestored(options.undofile, options.fromgroup);
    for (Change& change : reversal.changes)
        if (change.made)
            result.changes.push_back(std::move(change));
}

} // namespace

std::string recordeddirectory(const std::string& undofile, std::string& why) {
    UndoFile undo;
    why = readundofile(undofile, undo);
    if (!why.empty())
        why = undofile + ": " + why;
    return undo.directory;
}

RestoreResult restore(const std::shared_ptr<Tree>& tree, RestoreOptions options) {
    const SignalHold untilrestored;
    RestoreResult result;
    UndoFile undo;
    std::string damage = readundofile(options.undofile, undo);
    if (damage.empty() && !undo.groups.empty() &&
        (options.fromgroup < 1 || options.fromgroup > undo.groups.size()))
        damage = "it has no such group of changes";
    if (!damage.empty())
        result.refused = options.undofile + ": " + damage;
    else if (const Failure failure = tree->begin())
        result.refused = tree->path() + ": it can't be read (" + failure.text() + ")";
    else if (std::string full; options.recorded && (tree->fullPath(full) || full != undo.directory))
        result.refused = tree->path() + ": a link has come into its path, and leads to " + full +
                         ": give the directory that is meant";
    if (!result.refused.empty())
        return result;
    Reversal reversal(*tree, undo, options.fromgroup);
    result.left = reversal.left;
    if (!reversal.left.empty() && !options.yes && !options.plan) {
        result.refused = "Not all is as it was left by the changes; with --yes the rest is restored";
        return result;
    }
    if (options.plan) {
        result.changes = std::move(reversal.changes);
        return result;
    }
    carryout(tree, undo, reversal, options, result);
    return result;
}
