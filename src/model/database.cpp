#include "model/database.h"

#include <algorithm>
#include <iterator>

#include "files/finder.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/letters.h"
#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "platform/system/plan.h"
#include "reporting/log.h"

TSXdatabase::TSXdatabase(const char* datadirectory)
    : datapath(datadirectory), types(1), keytree(*this), keyarray(1), visiblekeys(1), problems(1) {}

TSXdatabase::~TSXdatabase() {
    if (planning)
        forgetPlan();
}

void TSXdatabase::readlists(const char* directorytext) {
    directory = directorytext;
    clearproblems();
    types[0] = std::make_unique<TSXexptype>(0, "Database");
    for (const FileClass& format : fileclasses)
        lists.push_back(format.makelist(*this));
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
    const char* what = thing.weight == Unread::told ? "passed over" : "could not read";
    logLine(Text<1500>().format("   %s '%s': %s", what, thing.name.c_str(), thing.reason.c_str()));
    unread.push_back(std::move(thing));
}

void TSXdatabase::addunreadpath(std::string_view fullpath, const std::string& reason, Unread::Weight weight,
                                std::int32_t record) {
    addunread({diskname(fullpath), reason, weight, record, !looking});
}

void TSXdatabase::notesearch(const TSXfinder& search, const char* relative, Unread::Weight weight) {
    const std::string path = std::string(directory) + "/" + relative;
    if (search.failure != 0)
        addunreadpath(path, errorText(search.failure), weight);
    const std::string folder = diskname(path);
    for (const std::string& name : search.passedover) {
        const std::string place = folder == "." ? name : folder + "/" + name;
        if (name.find('\\') == std::string::npos)
            addunread({place, "Another file is read under this name.", Unread::told, 0, !looking});
        else
            addunread({place, "Its name holds a backslash, so it can't be opened: give it another name.",
                       weight, 0, !looking});
    }
}

// Of directories whose names differ in case alone one is read; what lies in another is not known, unless it
// is that very directory.
void TSXdatabase::notetwins(const std::string& name, Unread::Weight weight) {
    const std::string path = std::string(directory) + "/" + name;
    const std::string read = diskname(path);
    const FileIdentity identity = stateOf(path.c_str()).identity;
    TSXfinder finder;
    int match = finder.findfirst((path + "*").c_str());
    notesearch(finder, ".", weight);
    for (; match != 0; match = finder.findnext()) {
        const std::string twin = finder.entryname.c_str();
        if (twin == read || !equalIgnoringCase(twin, name) ||
            !mayBeDirectory((std::string(directory) + "/" + twin).c_str()))
            continue;
        if (finder.entryidentity == identity)
            addunread({twin, "It is another name of '" + read + "'.", Unread::told, 0, !looking});
        else
            addunread({twin, "'" + read + "' is read in its place: bring the files of both together.", weight,
                       0, !looking});
    }
    finder.findclose();
}

void TSXdatabase::forgetrecords(const std::string& name) {
    const auto ofthefile = [&](const Unread& thing) { return thing.record > 0 && thing.name == name; };
    unread.erase(std::remove_if(unread.begin(), unread.end(), ofthefile), unread.end());
}

void TSXdatabase::forgetlooks() {
    const auto passing = [&](const Unread& thing) {
        if (!thing.lasting)
            unreadnames.erase(thing.name);
        return !thing.lasting;
    };
    unread.erase(std::remove_if(unread.begin(), unread.end(), passing), unread.end());
}

bool TSXdatabase::directorymissing() const {
    for (std::size_t i = 0; i < lists.size(); ++i)
        if (lists[i]->missing && isrequired(fileclasses[i].directory))
            return true;
    return false;
}

bool TSXdatabase::picturecomplete() const {
    return std::none_of(unread.begin(), unread.end(),
                        [](const Unread& thing) { return thing.weight == Unread::whole; });
}

int TSXdatabase::unreadcount() const {
    return static_cast<int>(std::count_if(unread.begin(), unread.end(),
                                          [](const Unread& thing) { return thing.weight != Unread::told; }));
}

bool TSXdatabase::isunread(std::string_view fullpath) const {
    return unreadnames.count(diskname(fullpath)) != 0;
}

// A look-up changes the case of a path's letters, never its length.
std::string TSXdatabase::diskname(std::string_view fullpath) const {
    std::string name = resolvePath(fullpath);
    name.erase(0, std::min(name.size(), directory.view().size()));
    while (!name.empty() && (name[0] == '/' || name.compare(0, 2, "./") == 0))
        name.erase(0, 1);
    return name.empty() ? "." : name;
}

void TSXdatabase::addchange(Change change) {
    notechange(change);
    changes.push_back(std::move(change));
}

void TSXdatabase::notechange(Change& change) const {
    change.made = true;
    if (!planning && logEnabled == 1)
        logLine(describe(change).c_str());
}

void TSXdatabase::addnoted(std::vector<Change>& group) {
    std::erase_if(group, [](const Change& change) { return !change.made; });
    if (changes.empty())
        changes.swap(group);
    else
        std::move(group.begin(), group.end(), std::back_inserter(changes));
}

bool TSXdatabase::takeaway(const char* fullpath) const {
    return planning ? planRemoval(fullpath) : removeFile(fullpath);
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
