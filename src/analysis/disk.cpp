// The solutions that take effect on the disk at once: files are deleted, and directories made. While planning
// the disk is left as it is, and only looks as if it had been done.
#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/messagebox.h"
#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "platform/system/plan.h"
#include "platform/system/signalhold.h"
#include "reporting/report.h"

namespace {

struct Doomed {
    std::string path;
    FileState known; // as it was when it was looked at; of no file where that is not known
    bool unread = false;
    bool gone = false;
};

void tell(const char* form, const std::string& path, const std::string& reason) {
    const std::string text = Text<2400>().format(form, path.c_str()).c_str() + ("\n" + reason);
    report(text.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
}

void tellfailure(const char* form, const std::string& path, const char* advice) {
    tell(form, path, errorText(GetLastError()) + "\n" + advice);
}

constexpr const char* noremoval = "Unable to remove the file '%s'";
constexpr const char* nodirectory = "Unable to create the directory '%s'";
constexpr const char* repeat = "Remove the cause, and repeat the solution.";

// What a directory has gained or lost, put on the disk itself.
bool confirm(const std::string& path) {
    if (syncDirectoryOf(path.c_str()))
        return true;
    tellfailure("The disk does not confirm a change in the directory of '%s'", path,
                "After a sudden stop of the machine it may be as it was before: check the disk.");
    return false;
}

bool ask(const TSXdatabase& database, const std::vector<Change>& group) {
    return database.keeper == nullptr || database.planning || database.keeper->before(group);
}

void end(const TSXdatabase& database) {
    if (database.keeper != nullptr && !database.planning)
        database.keeper->after();
}

// What was found, unless the disk has failed and nothing is known.
std::string orfailure(const char* found) {
    const std::uint32_t number = GetLastError();
    return number == ERROR_SUCCESS || isAbsence(number) ? found : errorText(number) + "\n" + repeat;
}

// Why a file is to be left; nothing if it may be deleted.
std::string whykept(const TSXdatabase& database, const Doomed& file) {
    const std::string root = database.directory.c_str();
    const std::string holder = file.path.substr(0, file.path.find_last_of("/\\"));
    SetLastError(ERROR_SUCCESS);
    if (holder != root && holder != root + "/." && pathExists(holder) && !leadsInto(holder, root))
        return orfailure(
            "A link leads to it out of the directory of the database, and nothing is deleted there.\n"
            "Put the directory itself in place of the link, and repeat the solution.");
    if (file.unread)
        return "It could not be read, so it can't be known whether it is empty.\n"
               "Put that right, and load the database again.";
    if (!pathExists(file.path))
        return orfailure("It is not there any more.\nLoad the database again.");
    if (file.known.identity.inode != 0 && stateOf(file.path.c_str()) != file.known)
        return orfailure("Another program has changed it since it was looked at.\n"
                         "Load the database again, and look at it anew.");
    return {};
}

bool deleteone(TSXdatabase& database, Doomed& file, Change& change) {
    file.gone = database.takeaway(file.path.c_str());
    if (file.gone)
        database.addchange(std::move(change));
    else
        tellfailure(noremoval, file.path, repeat);
    return file.gone;
}

// Deletes files of one directory. False when one could not be deleted, or it is not certain, which has been
// told.
bool deletefiles(TSXdatabase& database, std::vector<Doomed>& files) {
    const SignalHold untildone;
    std::vector<Change> group;
    std::vector<Doomed*> chosen;
    for (Doomed& file : files) {
        const std::string obstacle = whykept(database, file);
        if (obstacle.empty()) {
            group.push_back(filechange(Change::deletion, database.diskname(file.path)));
            chosen.push_back(&file);
        } else {
            tell(noremoval, file.path, obstacle);
        }
    }
    if (group.empty() || !ask(database, group))
        return files.empty();
    bool all = chosen.size() == files.size();
    for (std::size_t i = 0; i < chosen.size(); ++i)
        all = deleteone(database, *chosen[i], group[i]) && all;
    if (!database.planning)
        all = confirm(files[0].path) && all;
    end(database);
    return all;
}

} // namespace

int TSXdatabase::removeemptyfiles(int fileclass) {
    if (fileclass < 0 || fileclass > lastlist)
        return 0;
    TSXfilelist& list = *lists[static_cast<std::size_t>(fileclass)];
    std::vector<Doomed> doomed;
    std::vector<int> positions;
    for (int i = 1; i <= list.count; ++i) {
        const TSXdatafile& file = *list.files[static_cast<std::size_t>(i)];
        if (!file.isempty())
            continue;
        doomed.push_back({file.path.c_str(), file.onread, file.unread});
        positions.push_back(i);
    }
    const bool all = deletefiles(*this, doomed);
    for (std::size_t i = doomed.size(); i-- > 0;)
        if (doomed[i].gone)
            list.removeat(positions[i]);
    return all ? 1 : 0;
}

int TSXdatabase::deletecorruptfile(int fileclass, int position) {
    if (fileclass < 0 || fileclass > lastlist)
        return 0;
    TSXfilelist& list = *lists[static_cast<std::size_t>(fileclass)];
    if (position < 1 || position > list.count)
        return 0;
    const TSXdatafile& file = *list.files[static_cast<std::size_t>(position)];
    std::vector<Doomed> doomed{{file.path.c_str(), file.onread, file.unread}};
    const bool all = deletefiles(*this, doomed);
    if (doomed[0].gone)
        list.removeat(position);
    return all ? 1 : 0;
}

int TSXdatabase::deletefile(const char* fullpath) {
    std::vector<Doomed> doomed{{fullpath, {}, isunread(fullpath)}};
    for (const auto& problem : problems)
        if (problem != nullptr && problem->kind == corruptsidefile && problem->name.view() == fullpath)
            doomed[0].known = problem->looked;
    return deletefiles(*this, doomed) ? 1 : 0;
}

namespace {

// Why something that stands there under that name does not serve as the directory.
std::string obstacletodirectory(const char* fullpath) {
    if (canEnterDirectory(fullpath))
        return "It has been made meanwhile.\nLoad the database again.";
    if (isAbsence(GetLastError()))
        return "A file of that name stands there, and no directory.\nMove it away, and repeat the solution.";
    return errorText(GetLastError()) + "\nGive the right to enter it, and load the database again.";
}

} // namespace

int TSXdatabase::createdirectory(const char* fullpath) {
    if (pathExists(fullpath)) {
        tell(nodirectory, fullpath, obstacletodirectory(fullpath));
        return 0;
    }
    const SignalHold untildone;
    const Change change = filechange(Change::making, diskname(fullpath));
    if (!ask(*this, {change}))
        return 0;
    const bool made = planning ? planDirectory(fullpath) : CreateDirectoryA(fullpath) != 0;
    if (made)
        addchange(change);
    else
        tellfailure(nodirectory, fullpath, repeat);
    const bool certain = made && (planning || confirm(fullpath));
    end(*this);
    return certain ? 1 : 0;
}
