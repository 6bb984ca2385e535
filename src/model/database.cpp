#include "model/database.h"

#include <algorithm>
#include <iterator>

#include "files/finder.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/errors.h"
#include "platform/system/letters.h"
#include "reporting/log.h"

TSXdatabase::TSXdatabase(const char* datadirectory)
    : datapath(datadirectory), types(1), keytree(*this), keyarray(1), visiblekeys(1), problems(1) {}

TSXdatabase::~TSXdatabase() = default;

void TSXdatabase::readlists(const char* directorytext) {
    directory = directorytext;
    if (!tree->isOpen()) [[maybe_unused]]
        const Failure failure = tree->open(directorytext);
    else [[maybe_unused]]
        const Failure failure = tree->begin();
    if (committer == nullptr)
        committer = std::make_unique<Committer>(tree, CommitOptions{.keepundo = false});
    clearproblems();
    types[0] = std::make_unique<TSXexptype>(0, "Database");
    for (int fileclass = 0; fileclass < fileclasscount; ++fileclass)
        lists.push_back(std::make_unique<TSXfilelist>(*this, fileclass));
    lastlist = static_cast<std::int32_t>(lists.size()) - 1;
}

int TSXdatabase::addexptype(int fileclass, std::string_view name) {
    if (const auto known = typenumbers.find({fileclass, name}); known != typenumbers.end())
        return known->second;
    if (lasttype >= maxtypes) {
        addunread({std::string(fileclasses[fileclass].directory) + "/" + std::string(name),
                   "There are more than 200 experiment types; this one is counted under the last.",
                   Unread::whole, Unread::type});
        return lasttype;
    }
    types.push_back(std::make_unique<TSXexptype>(fileclass, name));
    typenumbers[{fileclass, types.back()->name.view()}] = ++lasttype;
    return lasttype;
}

void TSXdatabase::forgettypes(std::int32_t last) {
    for (; lasttype > last; --lasttype, types.pop_back())
        typenumbers.erase({types.back()->classid, types.back()->name.view()});
}

TSXexptype* TSXdatabase::gettype(int index) const {
    return index >= 0 && index <= lasttype ? types[static_cast<std::size_t>(index)].get() : nullptr;
}

TSXkeyentry* TSXdatabase::getvisiblekey(int index) const {
    if (index < 1 || index > visiblecount)
        return nullptr;
    return keyarray[static_cast<std::size_t>(visiblekeys[static_cast<std::size_t>(index)])];
}

TSXkeyentry& TSXdatabase::findoraddkey(std::string_view key) {
    TSXkeyentry& entry = keytree.findoradd(key);
    if (keytree.added == 1) {
        keyschanged();
        keyarray.push_back(&entry);
        visiblekeys.push_back(++keytotal);
        ++visiblecount;
    }
    return entry;
}

void TSXdatabase::addunread(Unread thing) {
    if (thing.record <= 0 && thing.weight != Unread::told && !unreadnames.insert(thing.name).second)
        return;
    thing.lasting = !looking;
    const char* what = thing.weight == Unread::told ? "passed over" : "could not read";
    logLine(Text<1500>().format("   %s '%s': %s", what, thing.name.c_str(), thing.reason.c_str()));
    unread.push_back(std::move(thing));
}

void TSXdatabase::addunreadpath(std::string_view fullpath, const std::string& reason, Unread::Weight weight,
                                std::int32_t record) {
    addunread({diskname(fullpath), reason, weight, record});
}

void TSXdatabase::notesearch(const TSXfinder& search, const char* relative, Unread::Weight weight) {
    const std::string path = std::string(directory) + "/" + relative;
    if (search.failure != 0)
        addunreadpath(path, errorText(search.failure), weight);
    const std::string folder = diskname(path);
    for (const std::string& name : search.passedover) {
        const std::string found = folder == "." ? name : folder + "/" + name;
        if (name.find('\\') == std::string::npos)
            addunread({found, "Another file is read under this name.", Unread::told});
        else
            addunread(
                {found, "Its name holds a backslash, so it can't be opened: give it another name.", weight});
    }
}

// Of directories whose names differ in case alone one is read; what lies in another is not known, unless it
// is that very directory. Names are those of the listing: a file system that takes any letters for a name has
// one of them.
void TSXdatabase::notetwins(const std::string& name, Unread::Weight weight) {
    std::vector<std::string> names;
    if (const Failure failure = tree->names(".", names)) {
        addunreadpath(directory.view(), failure.text(), weight);
        return;
    }
    const std::string* read = findName(names, name);
    for (const std::string& twin : names)
        if (&twin != read && equalIgnoringCase(twin, name))
            notetwin(twin, *read, weight);
}

void TSXdatabase::notetwin(const std::string& twin, const std::string& read, Unread::Weight weight) {
    Entry entry, other;
    const Failure failure = tree->enter(twin);
    if (failure.isAbsence())
        return;
    const bool known = !tree->look(twin, Links::followed, other) && !tree->look(read, Links::followed, entry);
    if (known && entry.state.identity == other.state.identity)
        addunread({twin, "It is another name of '" + read + "'.", Unread::told});
    else if (known && entry.state.kind != FileState::directory)
        addunread(
            {twin, "'" + read + "' is no directory, and keeps it from being read: move that away.", weight});
    else
        addunread({twin, "'" + read + "' is read in its place: bring the files of both together.", weight});
}

void TSXdatabase::noteoutside(const TSXfinder& match) {
    if (!match.entryoutside.empty() && outsidelinks.insert(match.entryoutside).second)
        addunread(
            {match.entryoutside,
             "It is a link that leads out of the database: what it leads to is judged, and never changed.",
             Unread::told});
}

void TSXdatabase::forgetrecords(const std::string& name) {
    std::erase_if(unread, [&](const Unread& thing) { return thing.record > 0 && thing.name == name; });
}

void TSXdatabase::forgettold(std::string_view fullpath) {
    const std::string name = diskname(fullpath);
    std::erase_if(unread,
                  [&](const Unread& thing) { return thing.weight == Unread::told && thing.name == name; });
}

std::vector<std::string> TSXdatabase::changedsince() const {
    std::vector<std::string> all;
    for (const auto& list : lists)
        std::ranges::move(list->changedsince(), std::back_inserter(all));
    return all;
}

void TSXdatabase::reread() {
    if (tree->begin())
        return; // the analysis tells
    std::erase_if(unread, [](const Unread& thing) { return thing.record != Unread::type; });
    unreadnames.clear();
    outsidelinks.clear();
    for (const Unread& thing : unread)
        unreadnames.insert(thing.name);
    for (const auto& list : lists)
        list->reread();
    keyschanged();
}

void TSXdatabase::forgetlooks() {
    std::erase_if(unread, [&](const Unread& thing) {
        if (!thing.lasting) {
            unreadnames.erase(thing.name);
            outsidelinks.erase(thing.name);
        }
        return !thing.lasting;
    });
}

bool TSXdatabase::directorymissing() const {
    return std::ranges::any_of(
        lists, [](const auto& list) { return list->missing && isrequired(list->format.directory); });
}

bool TSXdatabase::picturecomplete() const {
    return std::ranges::find(unread, Unread::whole, &Unread::weight) == unread.end();
}

int TSXdatabase::unreadcount() const {
    return static_cast<int>(unread.size()) -
           static_cast<int>(std::ranges::count(unread, Unread::told, &Unread::weight));
}

bool TSXdatabase::isunread(std::string_view fullpath) const {
    return !unreadnames.empty() && unreadnames.contains(diskname(fullpath));
}

std::string TSXdatabase::diskname(std::string_view fullpath) const {
    return tree->spelled(fullpath);
}

void TSXdatabase::addchange(Change change) {
    ChangeLines lines({&change, 1});
    for (ChangeLine line; !planning && logEnabled == 1 && lines.next(line);)
        logLine(describe(line).c_str());
    changes.push_back(std::move(change));
}

void TSXdatabase::addproblem(std::unique_ptr<TSXproblem> problem) {
    problems.push_back(std::move(problem));
    ++problemcount;
}

TSXproblem* TSXdatabase::getproblem(int index) const {
    return index >= 1 && index <= problemcount ? problems[static_cast<std::size_t>(index)].get() : nullptr;
}

void TSXdatabase::clearproblems() {
    problems.resize(1);
    problemcount = 0;
}
