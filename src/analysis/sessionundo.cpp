#include "analysis/sessionundo.h"

#include <algorithm>
#include <utility>

#include "changes/restore.h"
#include "model/database.h"
#include "model/datafile.h"
#include "reporting/notify.h"

namespace {

// Whether a change brought keys to the disk, and is no solution that acts at once.
bool issaved(const Change& change) {
    return change.kind == Change::keys ||
           (change.kind == Change::making && change.state.kind == FileState::plain);
}

} // namespace

SessionUndo::SessionUndo(TSXdatabase& watched)
    : database(watched), changes(watched.changes.size()), groups(watched.committer->groups()) {
    database.keychanging = [this](const TSXdatafile& file, int record, std::string_view key) {
        noted.push_back({file.classid, file.name.c_str(), record,
                         std::string(file.keys[static_cast<std::size_t>(record)]), std::string(key)});
    };
}

SessionUndo::~SessionUndo() {
    database.keychanging = nullptr;
}

void SessionUndo::noteStep(const std::string& name) {
    const bool ondisk = database.changes.size() > changes;
    const std::uint32_t first = groups + 1;
    const auto before = static_cast<std::ptrdiff_t>(changes);
    changes = database.changes.size();
    groups = database.committer->groups();
    if (ondisk && groups < first) // there is no undo file: what was before can't be reached any more
        steps.clear();
    else if (std::any_of(database.changes.begin() + before, database.changes.end(), issaved))
        std::erase_if(steps, [](const Step& step) { return step.group == 0; });
    if (ondisk && groups >= first)
        steps.push_back({name, first, {}});
    else if (!noted.empty())
        steps.push_back({name, 0, std::move(noted)});
    noted.clear();
}

bool SessionUndo::takeBack() {
    if (steps.empty() || (steps.back().group != 0 && !restoreFrom(steps.back().group)))
        return false;
    std::vector<KeyChange>& keys = steps.back().keys;
    std::for_each(keys.rbegin(), keys.rend(), [this](const KeyChange& change) { giveBack(change); });
    steps.pop_back();
    noted.clear();
    changes = database.changes.size();
    return true;
}

bool SessionUndo::restoreFrom(std::uint32_t group) {
    if (!database.committer->completeopen(database.changes))
        return false;
    RestoreOptions options{.undofile = database.committer->undopath(),
                           .fromgroup = group,
                           .commit = {.ask = true, .holds = database.committer->options().holds}};
    RestoreResult result = restore(database.tree, options);
    if (!result.left.empty() && !result.refused.empty() &&
        askall(result.left, "This is not as it was left. Take back the rest?")) {
        options.yes = true;
        result = restore(database.tree, options);
        notifyall(result.left);
    } else if (!result.refused.empty() && result.left.empty()) {
        notifyall({result.refused});
    }
    for (Change& change : result.changes)
        database.addchange(std::move(change));
    database.reread();
    return result.refused.empty();
}

// A file that was made in memory goes as a whole; a key that has changed since is left.
void SessionUndo::giveBack(const KeyChange& change) {
    TSXfilelist& list = *database.lists[static_cast<std::size_t>(change.fileclass)];
    const auto found = std::ranges::find_if(
        list.files, [&](const auto& file) { return file != nullptr && file->name.view() == change.file; });
    const auto record = static_cast<std::size_t>(change.record);
    if (found == list.files.end() || (*found)->keycount < change.record ||
        (*found)->keys[record] != change.after)
        return;
    TSXdatafile& file = **found;
    if (file.ondisk == 0) {
        list.removeat(static_cast<int>(found - list.files.begin()));
        return;
    }
    const std::string ondisk(file.keydirty[record] == 1 ? file.keysondisk[record] : file.keys[record]);
    file.setkey(change.record, change.before.c_str());
    file.settle(change.record, ondisk);
}
