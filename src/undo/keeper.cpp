#include "undo/keeper.h"

#include <algorithm>

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
    writer_.expect(group.size());
    for (auto first = group.begin(), last = first; first != group.end(); first = last) {
        last = std::find_if(first + 1, group.end(), [&](const Change& next) {
            return first->kind != Change::key || next.kind != Change::key || next.file != first->file;
        });
        if (!addFile(first, last))
            return false;
    }
    return true;
}

bool UndoKeeper::addFile(Changes first, Changes last) {
    return first->kind == Change::key        ? addKeys(first, last)
           : first->kind == Change::deletion ? writer_.addDeletion(first->file)
                                             : writer_.addMaking(first->file);
}

bool UndoKeeper::addKeys(Changes first, Changes last) {
    fields_.resize(static_cast<std::size_t>(last - first));
    auto field = fields_.begin();
    for (Changes change = first; change != last; ++change, ++field) {
        field->record = change->record;
        field->offset = change->offset;
        field->before = change->fieldbefore;
        TSXbinfile::makefield(field->after, change->newkey, keycapacity);
    }
    return writer_.addKeys(first->file, fields_);
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
