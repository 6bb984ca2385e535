#include "changes/undodirectory.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>

#include "platform/system/person.h"
#include "platform/system/text.h"

namespace {

constexpr std::int64_t keptSeconds = std::int64_t{30} * 24 * 60 * 60;
constexpr std::size_t keptOfDatabase = 10;
constexpr const char* nameForm = "%Y%m%d-%H%M%S";
constexpr std::size_t timeLength = 15; // of that form
constexpr std::string_view extension = ".undo";

// The moment that a name tells; -1 where it tells none.
std::int64_t timeOf(const std::string& name) {
    std::tm parts = {};
    const char* end = strptime(name.c_str(), nameForm, &parts);
    return end == name.c_str() + timeLength ? timegm(&parts) : -1;
}

bool isUndoName(const std::string& name) {
    return name.size() > extension.size() && name.ends_with(extension) && timeOf(name) >= 0;
}

bool isOld(std::int64_t time) {
    return time + keptSeconds < std::time(nullptr);
}

// The names of the undo files in it, and of the links to those that stand elsewhere, the oldest first.
std::vector<std::string> undonames(Tree& directory) {
    std::vector<std::string> names;
    if (directory.names(".", names))
        names.clear();
    std::erase_if(names, [](const std::string& name) { return !isUndoName(name); });
    return names; // whose order is that of time
}

// An undo file elsewhere may only be on a medium that is away, and be that of an interrupted run.
bool leadsNowhere(Tree& directory, const std::string& name) {
    Entry entry;
    std::string target;
    return !directory.readLink(name, target) &&
           directory.look(name, Links::followed, entry).number == ERROR_CANT_RESOLVE_FILENAME;
}

void take(Tree& directory, const std::string& name) {
    Entry entry;
    if (!directory.look(name, Links::unfollowed, entry)) [[maybe_unused]]
        const Failure left = directory.remove(name, entry.state);
}

UndoListEntry entryOf(Tree& directory, const std::string& name) {
    UndoFile undo;
    UndoListEntry entry;
    entry.damage = readundohead(directory, name, undo);
    entry.path = directory.path() + "/" + name;
    entry.header = undo.header;
    entry.directory = undo.directory;
    entry.time = timeOf(name);
    entry.maygo = entry.time + keptSeconds;
    entry.size = undo.file ? undo.file->opened().size : 0;
    return entry;
}

// Whether the directory stands under that name. A link in its place may be somebody else's, who would choose
// where the files of this user are made: 1921.
Failure standsitself(Tree& directory, const std::string& path) {
    Tree above;
    std::string name;
    Entry named, held;
    Failure failure = above.openDirectoryOf(path, name);
    failure = failure ? failure : above.look(name, Links::unfollowed, named);
    failure = failure ? failure : directory.look(".", Links::unfollowed, held);
    return failure || named.state.identity == held.state.identity ? failure
                                                                  : Failure{ERROR_CANT_RESOLVE_FILENAME};
}

} // namespace

std::string timetext(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm parts = {};
    char text[40] = {};
    if (localtime_r(&time, &parts) != nullptr)
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return text;
}

std::string UndoListEntry::state() const {
    std::string text = header.isrestore == 1 ? "a restore" : "";
    const auto add = [&](const char* more) { text += std::string(text.empty() ? "" : "; ") + more; };
    if (header.restoredfrom != UndoHeader::never)
        add(header.restoredfrom == 1 ? "restored" : "restored in part");
    if (header.isopen())
        add("interrupted, or at work");
    return text;
}

std::string undodirectory() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && *state == '/')
        return std::string(state) + "/txinspect";
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? std::string(home) + "/.local/state/txinspect" : "";
}

Failure openundodirectory(Tree& directory, bool make) {
    const std::string path = undodirectory();
    if (path.empty())
        return {ERROR_PATH_NOT_FOUND};
    Failure failure = make ? makePrivateDirectories(path) : Failure();
    failure = failure ? failure : directory.open(path);
    return failure ? failure : standsitself(directory, path);
}

std::string newundoname(Tree& directory, std::int64_t now, int number) {
    const std::vector<std::string> names = undonames(directory);
    const std::int64_t last = names.empty() ? 0 : timeOf(names.back());
    const std::time_t moment = last > now ? last + 1 : now; // under a clock that is late no second gets full
    std::tm parts = {};
    gmtime_r(&moment, &parts);
    char text[timeLength + 1] = {};
    std::strftime(text, sizeof text, nameForm, &parts);
    return std::string(text) + Text<30>().format("-%03d", number).c_str() + std::string(extension);
}

void removeoldundofiles(Tree& directory, const std::string& justmade) {
    std::vector<std::string> names = undonames(directory);
    std::erase(names, justmade);
    if (names.size() < keptOfDatabase || isOld(timeOf(names.back())))
        return;
    std::map<std::string, std::size_t> newer; // of each database
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        if (leadsNowhere(directory, *name)) {
            if (isOld(timeOf(*name)))
                take(directory, *name);
            continue;
        }
        const UndoListEntry entry = entryOf(directory, *name);
        if (entry.damage.empty() && ++newer[entry.directory] >= keptOfDatabase && !entry.header.isopen() &&
            isOld(entry.time))
            take(directory, *name);
    }
}

std::vector<UndoListEntry> listundofiles(const std::string& directory) {
    std::vector<UndoListEntry> entries;
    Tree undos, wanted;
    std::string full;
    if (openundodirectory(undos, false) ||
        (!directory.empty() && (wanted.open(directory) || wanted.fullPath(full))))
        return entries;
    for (const std::string& name : undonames(undos)) {
        if (leadsNowhere(undos, name))
            continue;
        UndoListEntry entry = entryOf(undos, name);
        if (!entry.header.isempty() && (directory.empty() || entry.directory == full))
            entries.push_back(std::move(entry));
    }
    return entries;
}
