#include "model/filelist.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/finder.h"
#include "model/database.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "platform/system/errors.h"
#include "platform/system/letters.h"
#include "reporting/log.h"

TSXfilelist::TSXfilelist(TSXdatabase& owner, int fileclass)
    : database(owner), classid(fileclass), format(fileclasses[fileclass]), files(1),
      pattern(pathof(std::string("*.") + format.extension)) {
    search();
}

void TSXfilelist::search() {
    logLine(Text<800>().format("*** Scanning %s files at %s ***", format.scanlabel, pattern.c_str()));
    database.notetwins(format.directory, Unread::whole);
    TSXfinder finder(*database.tree);
    int match = finder.findfirst(pattern.c_str());
    missing = finder.missing;
    database.notesearch(finder, format.directory, Unread::whole);
    notepassedover(finder);
    for (; match != 0; match = finder.findnext()) {
        listing.insert(finder.entryname.c_str());
        if (finder.entrykind == TSXfinder::file)
            take(finder);
    }
}

TSXfilelist::~TSXfilelist() = default;

void TSXfilelist::reread() {
    for (auto& file : std::exchange(files, std::vector<std::unique_ptr<TSXdatafile>>(1)))
        if (file != nullptr)
            earlier[file->name.c_str() + (std::string(".") + format.extension)] = std::move(file);
    count = 0;
    lowestnumber = 1;
    names.clear();
    listing.clear();
    listed.clear();
    unknown.clear();
    passedover.clear();
    waiting.clear();
    search();
    for (auto& [name, file] : earlier)
        if (file != nullptr && file->onread == FileState() && file->entryname.empty())
            addfile(std::move(file), files.size());
    earlier.clear();
}

std::unique_ptr<TSXdatafile> TSXfilelist::unchanged(const std::string& name) {
    const auto found = earlier.find(name);
    Entry entry;
    if (found == earlier.end() || found->second->unread || found->second->onread == FileState() ||
        database.tree->look(database.tree->below(found->second->path.view()), Links::followed, entry) ||
        !entry.state.isUnchanged(found->second->onread))
        return nullptr;
    found->second->noteunreadrecords();
    return std::move(found->second);
}

std::string TSXfilelist::pathof(const std::string& name) const {
    return std::string(database.directory) + "/" + format.directory + "/" + name;
}

// The order is that of the search; what is made anew stands at the end.
std::size_t TSXfilelist::positionof(const std::string& name) const {
    std::size_t position = files.size();
    const auto isbehind = [&](const TSXdatafile& file) {
        return file.entryname.empty() || beforeInOrder(name, file.entryname);
    };
    while (position > 1 && isbehind(*files[position - 1]))
        --position;
    return position;
}

void TSXfilelist::take(const TSXfinder& match) {
    const std::string name = match.entryname.c_str();
    if (issecondname(match))
        return;
    if (count >= maxfiles) {
        database.addunreadpath(pathof(name), "There are more than 3000 files of its class.", Unread::whole);
        return;
    }
    const std::string basename = name.substr(0, name.size() - std::strlen(format.extension) - 1);
    scanning = true;
    auto file = unchanged(name);
    if (file == nullptr)
        file = std::make_unique<TSXdatafile>(database, *this, basename.c_str(), classid);
    scanning = false;
    file->entryname = name;
    file->outside = !match.entryoutside.empty();
    if (match.entryfailure != 0)
        file->noteunread(match.entryfailure);
    database.noteoutside(match);
    const TSXdatafile& taken = *file;
    addfile(std::move(file), positionof(name));
    if (database.fileread)
        database.fileread(taken);
}

// A second name of a file would double its keys, and repairs of the one name would undo those of the other.
bool TSXfilelist::issecondname(const TSXfinder& match) {
    const std::string name = match.entryname.c_str();
    if (match.entryidentity == FileIdentity()) {
        if (match.entryfailure != ERROR_CANT_RESOLVE_FILENAME) // of no file at all
            unknown = name;
        return false;
    }
    if (match.entrynames > 1 && !unknown.empty() && !listed.contains(match.entryidentity)) {
        database.addunreadpath(pathof(name),
                               "It may be another name of '" + unknown + "', which could not be read.",
                               Unread::whole);
        return true;
    }
    const auto [known, first] = listed.try_emplace(match.entryidentity, name);
    if (first)
        return false;
    passedover.emplace(known->second, name);
    database.addunreadpath(pathof(name),
                           "It is another name of '" + database.diskname(pathof(known->second)) + "'.",
                           Unread::told);
    return true;
}

// A look-up of such a name with the extension of the search opens another entry.
void TSXfilelist::notepassedover(const TSXfinder& search) {
    const std::string extension = format.extension;
    listing.insert(search.passedover.begin(), search.passedover.end());
    for (const std::string& name : search.passedover) {
        std::string asked = name;
        asked.replace(name.size() - extension.size(), extension.size(), extension);
        const std::string opened = database.diskname(pathof(asked));
        passedover.emplace(opened.substr(opened.rfind('/') + 1), name);
    }
}

void TSXfilelist::addfile(std::unique_ptr<TSXdatafile> file, std::size_t position) {
    database.keyschanged();
    names.insert(file->name.c_str());
    files.insert(files.begin() + static_cast<std::ptrdiff_t>(position), std::move(file));
    ++count;
}

void TSXfilelist::removeat(int position) {
    const TSXdatafile& file = *files[static_cast<std::size_t>(position)];
    if (file.valid == 1)
        database.keyschanged();
    database.forgetrecords(file.unreadname);
    names.erase(file.name.c_str());
    listing.erase(file.entryname);
    lowestnumber = 1;
    const auto [first, last] = passedover.equal_range(file.entryname);
    for (auto name = first; name != last; ++name)
        waiting.insert(name->second);
    passedover.erase(first, last);
    std::erase_if(listed, [&](const auto& known) { return known.second == file.entryname; });
    files.erase(files.begin() + position);
    --count;
    for (const auto& problem : database.problems)
        if (problem != nullptr && problem->kind == corruptdatafile && problem->subkind == classid &&
            problem->fileindex >= position)
            problem->fileindex = problem->fileindex == position ? 0 : problem->fileindex - 1;
}

void TSXfilelist::takewaiting() {
    if (waiting.empty())
        return;
    TSXfinder finder(*database.tree);
    int match = finder.findfirst(pattern.c_str());
    if (finder.failure != 0) { // they wait on
        database.notesearch(finder, format.directory, Unread::whole);
        return;
    }
    for (; match != 0; match = finder.findnext()) {
        const std::string name = finder.entryname.c_str();
        if (finder.entrykind != TSXfinder::file || waiting.erase(name) == 0)
            continue;
        database.forgettold(pathof(name));
        take(finder);
    }
    waiting.clear();
    notepassedover(finder);
}

std::vector<std::string> TSXfilelist::changedsince() const {
    std::vector<std::string> texts;
    for (std::size_t i = 1; i < files.size(); ++i) {
        const TSXdatafile& file = *files[i];
        Entry entry;
        if (file.onread == FileState() || file.unread)
            continue;
        const Failure failure =
            database.tree->look(database.tree->below(file.path.view()), Links::followed, entry);
        if (failure || !entry.state.isUnchanged(file.onread))
            texts.push_back("'" + std::string(file.path) +
                            "': another program has changed it since it was read.");
    }
    TSXfinder finder(*database.tree);
    int match = finder.findfirst(pattern.c_str());
    std::vector<std::string> now = finder.passedover;
    for (; match != 0; match = finder.findnext())
        now.emplace_back(finder.entryname.c_str());
    for (const std::string& name : now)
        if (!listing.contains(name))
            texts.push_back("'" + pathof(name) +
                            "': another program has made it since the directory was read.");
    return texts;
}

void TSXfilelist::notemade(const std::string& name) {
    listing.insert(name.substr(name.rfind('/') + 1));
}

void TSXfilelist::reportinvalid(int fileclass) {
    for (int i = 1; i <= count; ++i) {
        const TSXdatafile& file = *files[static_cast<std::size_t>(i)];
        if (file.valid == 1)
            continue;
        auto problem = std::make_unique<TSXproblem>(database, corruptdatafile, fileclass, file.name.view());
        problem->fileindex = i;
        database.addproblem(std::move(problem));
    }
}

void TSXfilelist::reportempty(int fileclass) {
    const auto isempty = [](const auto& file) { return file != nullptr && file->isempty(); };
    if (std::ranges::any_of(files, isempty))
        database.addproblem(std::make_unique<TSXproblem>(database, emptyfiles, fileclass));
}

int TSXfilelist::newfile() {
    if (count >= maxfiles)
        return -1;
    Text<20> name;
    const auto islisted = [&](int number) { return names.contains(name.format("DBSF%03d", number).c_str()); };
    while (islisted(lowestnumber))
        ++lowestnumber;
    int number = lowestnumber;
    // A file of that name may stand on the disk without being in the list: beyond its limit, or as a
    // directory.
    Entry entry;
    Failure failure;
    const auto istaken = [&] {
        failure =
            database.tree->look(std::string(format.directory) + "/" + name.c_str() + "." + format.extension,
                                Links::unfollowed, entry);
        return !failure && entry.state.kind != FileState::missing;
    };
    while (islisted(number) || istaken())
        ++number;
    if (!entry.outside.empty())
        database.leftout.push_back("'" + entry.outside +
                                   "' is a link that leads out of the database, and no file is made there");
    if (failure)
        database.leftout.push_back(std::string(format.directory) + ": whether the name " + name.c_str() +
                                   " is free can't be read (" + failure.text() + ")");
    if (failure || !entry.outside.empty())
        return -1;
    auto made = std::make_unique<TSXdatafile>(database, *this, name, classid);
    if (made->unread) // whether its name is free can't be known
        return -1;
    addfile(std::move(made), files.size());
    return count;
}
