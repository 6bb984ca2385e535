#include "undo/place.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>

#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "undo/undofile.h"
#include "undo/undolist.h"

namespace {

constexpr std::int64_t keptSeconds = std::int64_t{30} * 24 * 60 * 60;
constexpr std::size_t keptOfDatabase = 10;

bool isUndoName(const std::string& name) {
    constexpr std::string_view extension = ".undo";
    return name.size() > extension.size() &&
           std::string_view(name).substr(name.size() - extension.size()) == extension;
}

UndoListEntry entryOf(const std::string& path) {
    UndoFile file;
    UndoListEntry entry;
    entry.path = path;
    entry.damage = readUndoFile(path, file);
    entry.size = static_cast<std::int64_t>(file.bytes.size());
    if (!entry.damage.empty())
        return entry;
    entry.time = file.header.time;
    entry.directory = file.directory;
    entry.changes = file.header.changes;
    entry.open = file.header.isOpen();
    return entry;
}

bool isOld(std::int64_t time) {
    return time + keptSeconds < std::time(nullptr);
}

bool mayGo(const std::string& path) {
    UndoHeader header;
    return readUndoHeader(path, header) && !header.isOpen() && isOld(header.time);
}

bool leadsNowhere(const std::string& path) {
    EntryState state;
    return readEntry(path, OfLink::target, state) && state.kind == EntryState::missing;
}

// An undo file elsewhere may only be on a medium that is away, and be that of an interrupted run.
bool isGone(const std::string& path) {
    EntryState link;
    return leadsNowhere(path) && readEntry(path, OfLink::itself, link) && isOld(link.changed.seconds);
}

} // namespace

std::string undoDirectory() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && *state == '/')
        return std::string(state) + "/txinspect";
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? std::string(home) + "/.local/state/txinspect" : "";
}

std::vector<std::string> undoFilePaths() {
    const std::string directory = undoDirectory();
    std::vector<std::string> paths;
    if (!directory.empty())
        for (const std::string& name : directoryEntries(directory))
            if (isUndoName(name))
                paths.push_back(directory + "/" + name);
    return paths;
}

std::vector<UndoListEntry> listUndoFiles() {
    std::vector<UndoListEntry> entries;
    for (const std::string& path : undoFilePaths())
        if (!leadsNowhere(path))
            entries.push_back(entryOf(path));
    std::stable_sort(entries.begin(), entries.end(),
                     [](const UndoListEntry& a, const UndoListEntry& b) { return a.time < b.time; });
    return entries;
}

void removeOldUndoFiles() {
    const std::vector<std::string> paths = undoFilePaths();
    for (const std::string& path : paths)
        if (isGone(path))
            removeFile(path.c_str());
    // Most often that is known without reading all of them, and the new one is large.
    if (paths.size() <= keptOfDatabase || std::none_of(paths.begin(), paths.end(), mayGo))
        return;
    std::vector<UndoListEntry> entries = listUndoFiles();
    std::map<std::string, std::size_t> newer; // of each database
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        if (entry->damage.empty() && newer[entry->directory]++ >= keptOfDatabase && !entry->open &&
            isOld(entry->time))
            removeFile(entry->path.c_str());
}
