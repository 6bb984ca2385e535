// Carries a plan of restoring out, and keeps an undo file of that too.
#pragma once

#include "undo/restore.h"
#include "undo/restoreplan.h"

class Restoring {
public:
    Restoring(const RestorePlan& plan, const RestoreOptions& options, RestoreResult& result);
    void run();

private:
    bool keep();
    bool addFile(const FileRestore& file);
    bool isTakenUp(const FileRestore& file) const;
    void restoreFile(const FileRestore& file);
    bool remove(const FileRestore& file);
    bool recreate(const FileRestore& file);
    bool rewrite(const FileRestore& file);
    void tellLostNames(const UndoItem& item);
    bool verify(const FileRestore& file);
    bool giveBackState(const FileRestore& file);
    void restoreTimes(const UndoItem& directory);
    std::string under(const std::string& name) const;

    const RestorePlan& plan_;
    const RestoreOptions& options_;
    RestoreResult& result_;
    UndoWriter writer_;
    std::set<std::string> leftIn_; // directories of what was left
};
