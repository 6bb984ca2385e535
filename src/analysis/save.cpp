// The save: all changes are made from what stands on the disk now, and only where nothing is in the way of
// any of them, or the person wants the others all the same, is anything written.
#include <algorithm>

#include "changes/linkednames.h"
#include "model/database.h"
#include "model/datafile.h"
#include "platform/system/messagebox.h"
#include "platform/system/signalhold.h"
#include "reporting/log.h"
#include "reporting/notify.h"

namespace {

constexpr const char* inform = "Could not write in file '%s'";
constexpr const char* toform = "Could not write to file '%s'";
const std::string repeatchange = std::string("First ") + inspectAgain + ", and then repeat the change.";

std::string message(const char* form, const TSXdatafile& file, const std::string& reason) {
    return Text<1100>().format(form, file.path.c_str()).c_str() + ("\n" + reason);
}

void settlefile(TSXdatafile& file, const Change& change) {
    if (change.kind == Change::making) {
        file.settlewhole(change.judged);
        file.list.notemade(change.file);
        return;
    }
    foreachfield(change,
                 [&](const KeyField& field) { file.settle(field.record, keyin(field.after.whole())); });
    file.onread = change.judged;
}

class Save {
public:
    explicit Save(TSXdatabase& saved) : database(saved), tree(*saved.tree), linked(tree) {}

    bool run() {
        if (!database.completeearlier())
            return false;
        if (const Failure failure = tree.begin()) {
            obstacles.push_back("The database's directory can't be read any more: " + failure.text());
        } else {
            for (const auto& list : database.lists)
                collect(*list);
            comparelists();
        }
        if (!obstacles.empty() && !goon())
            return false;
        std::vector<Failure> failures(group.size());
        if (!database.planning && !database.committer->commit(group, failures))
            return false;
        if (const Failure failure = tree.begin()) // names that have come meanwhile are seen
            troubles.push_back("The database's directory can't be read any more: " + failure.text());
        for (std::size_t i = 0; i < group.size(); ++i)
            settle(i, failures[i]);
        notifyall(troubles,
                  "What could not be written stays marked as changed: remove the cause, and save again.");
        return obstacles.empty() && troubles.empty() && !database.committer->isopen();
    }

private:
    void collect(const TSXfilelist& list) {
        for (std::size_t i = 1; i < list.files.size(); ++i) {
            TSXdatafile& file = *list.files[i];
            if (file.anydirty() == 0)
                continue;
            if (file.ondisk == 0)
                draftnew(file);
            else
                draft(file);
        }
    }

    void draft(TSXdatafile& file) {
        Change change;
        std::vector<std::string> left;
        change.file = tree.spelled(file.path.view());
        std::string why = draftkeys(tree, file.onread, file.changedkeys(), change, left);
        if (!why.empty())
            logLocalError(Text<1200>().format("TSXbinfile: Could not open file %s", file.path.c_str()));
        if (why.empty())
            why = linked.whyreachesothers(change.state);
        const bool aswhole = !why.empty(); // not only some of its keys
        if (aswhole)
            left = {std::move(why)};
        for (const std::string& text : left)
            obstacles.push_back(message(inform, file, text));
        if (!aswhole && change.fieldcount > 0)
            add(file, std::move(change));
    }

    void draftnew(TSXdatafile& file) {
        Entry entry;
        std::string why;
        const std::string name = tree.spelled(file.path.view());
        Failure failure = tree.look(name, Links::unfollowed, entry);
        if (!failure)
            failure = tree.mayChangeDirectoryOf(name);
        if (failure)
            why = failure.text();
        else if (entry.state.kind != FileState::missing)
            why = std::string("Another file has that name by now. ") + repeatchange;
        else if (!entry.outside.empty())
            why = "'" + entry.outside +
                  "' is a link that leads out of the database, and nothing is made there. Put the "
                  "directory itself in its place, and save again.";
        if (!why.empty()) {
            logLocalError(Text<1200>().format("TSXbinfile: Could not open file %s", file.path.c_str()));
            obstacles.push_back(message(toform, file, why));
            return;
        }
        std::vector<std::int32_t> offsets;
        add(file, makingof(name, FileState::plain, contentOf(file.wholecontent(offsets))));
    }

    void add(TSXdatafile& file, Change change) {
        files.push_back(&file);
        group.push_back(std::move(change));
    }

    // Keys were judged by all files that were read: another program may have written or made one since.
    void comparelists() {
        if (group.empty())
            return;
        std::ranges::move(database.changedsince(), std::back_inserter(obstacles));
    }

    bool goon() {
        if (group.empty()) {
            notifyall(obstacles, repeatchange.c_str());
            return false;
        }
        return askall(obstacles, "Nothing was written yet. Save the others all the same?");
    }

    void settle(std::size_t i, Failure failure) {
        TSXdatafile& file = *files[i];
        Change& change = group[i];
        const bool whole = change.kind == Change::making;
        if (failure) {
            logLocalError(Text<1200>().format("TSXbinfile: Could not open file %s", file.path.c_str()));
            troubles.push_back(message(whole ? toform : inform, file, failure.text()));
            return;
        }
        if (!database.planning && whole && !keepnew(file, change))
            return;
        if (!database.planning)
            settlefile(file, change);
        database.addchange(std::move(change));
    }

    // One beside which a name in other letters has appeared meanwhile would hide that file, and is taken away
    // again.
    bool keepnew(const TSXdatafile& file, const Change& change) {
        if (const Failure failure = tree.standsAlone(change.file)) {
            troubles.push_back(message(toform, file, failure.text()));
            std::vector<Change> back{deletionof(change.file, {})};
            std::vector<Failure> failures;
            if (!draftdeletion(tree, change.judged, back[0]))
                database.committer->commit(back, failures);
            return false;
        }
        return true;
    }

    TSXdatabase& database;
    Tree& tree;
    LinkedNames linked;
    std::vector<Change> group;
    std::vector<TSXdatafile*> files;    // side by side with the changes
    std::vector<std::string> obstacles; // to all or nothing
    std::vector<std::string> troubles;  // on the way
};

} // namespace

int TSXdatabase::ismodified() const {
    for (const auto& list : lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            if (list->files[i]->anydirty() == 1)
                return 1;
    return 0;
}

bool TSXdatabase::completeearlier() {
    std::vector<Change> done;
    const bool complete = planning || committer->completeopen(done);
    for (Change& change : done) {
        for (const auto& list : lists)
            for (std::size_t i = 1; i < list->files.size(); ++i)
                if (diskname(list->files[i]->path.view()) == change.file)
                    settlefile(*list->files[i], change);
        addchange(std::move(change));
    }
    return complete;
}

int TSXdatabase::saveall() {
    const SignalHold untilsaved;
    return Save(*this).run() ? 1 : 0;
}
