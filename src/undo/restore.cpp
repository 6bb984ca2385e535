#include "undo/restore.h"

#include "platform/system/errors.h"
#include "platform/system/path.h"
#include "undo/restoreplan.h"
#include "undo/restoring.h"

std::string recordedDirectory(const std::string& undoFile, std::string& why) {
    UndoFile file;
    why = readUndoFile(undoFile, file);
    if (!why.empty())
        why = undoFile + ": " + why;
    return file.directory;
}

RestoreResult restore(const RestoreOptions& given) {
    RestoreResult result;
    RestoreOptions options = given;
    options.databaseDirectory = resolvePath(given.databaseDirectory);
    UndoFile undo;
    const std::string damage = readUndoFile(options.undoFile, undo);
    if (!damage.empty())
        result.refused = options.undoFile + ": " + damage;
    else if (!isAbout(undo, options.databaseDirectory))
        result.refused =
            GetLastError() == ERROR_SUCCESS
                ? options.undoFile + ": it is about another database, " + undo.directory
                : options.databaseDirectory + ": it can't be read (" + errorText(GetLastError()) + ")";
    if (!result.refused.empty())
        return result;
    RestorePlan plan(undo, options.databaseDirectory);
    result.left = plan.left;
    if (!plan.left.empty() && !options.yes)
        result.refused = "Not all is as it was left by the changes; with --yes the rest is restored";
    else
        Restoring(plan, options, result).run();
    return result;
}
