#include "undo/keeper.h"

#include "files/binfile.h"
#include "model/datafile.h"
#include "platform/system/messagebox.h"
#include "platform/system/path.h"
#include "reporting/report.h"
#include "undo/place.h"

UndoKeeper::UndoKeeper(const std::string& root, WithoutPlace withoutPlace, const std::string& path)
    : writer_(resolvePath(root), path), withoutPlace_(withoutPlace) {}

bool UndoKeeper::before(const std::vector<Change>& group) {
    const bool first = path().empty();
    if (!add(group) || !writer_.commit()) {
        writer_.drop();
        return goOnWithout();
    }
    waiting_ = !group.empty();
    if (first && !path().empty()) {
        removeOldUndoFiles();
        if (!writer_.unfound().empty())
            report(("Should this run be interrupted, the next one will not know of it: take the undo file " +
                    path() + " to restore the database then. The reason: " + writer_.unfound())
                       .c_str(),
                   "Warning", MB_OK | MB_ICONINFORMATION);
    }
    return true;
}

bool UndoKeeper::add(const std::vector<Change>& group) {
    for (std::size_t i = 0; i < group.size();) {
        const Change& change = group[i];
        std::vector<NewField> fields;
        for (; i < group.size() && group[i].kind == Change::key && group[i].file == change.file; ++i)
            fields.push_back({group[i].record, group[i].offset, group[i].fieldbefore,
                              TSXbinfile::fieldbytes(group[i].newkey.c_str(), keycapacity)});
        const bool added = change.kind == Change::key        ? writer_.addKeys(change.file, fields)
                           : change.kind == Change::deletion ? writer_.addDeletion(change.file)
                                                             : writer_.addMaking(change.file);
        if (!added)
            return false;
        if (change.kind != Change::key)
            ++i;
    }
    return true;
}

bool UndoKeeper::goOnWithout() const {
    const std::string text = "The changes could not be kept in an undo file: " + writer_.failure();
    if (withoutPlace_ == WithoutPlace::ask)
        return report((text + "\nWithout it they can't be undone. Go on without?").c_str(), "Warning",
                      MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
    report((text + "\nNothing was changed").c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
    return false;
}

void UndoKeeper::after() {
    if (waiting_ && !writer_.finish())
        report(("The changes were made, but not marked as finished in the undo file: " + writer_.failure() +
                "\nThe next run will do that")
                   .c_str(),
               "Error", MB_OK | MB_ICONEXCLAMATION);
    waiting_ = false;
}
