#include "files/finder.h"

#include "platform/system/errors.h"
#include "platform/system/letters.h"

namespace {

bool matchesPattern(std::string_view name, std::string_view prefix, std::string_view suffix) {
    return name.size() >= prefix.size() + suffix.size() &&
           equalIgnoringCase(name.substr(0, prefix.size()), prefix) &&
           equalIgnoringCase(name.substr(name.size() - suffix.size()), suffix);
}

// Whether a look-up of the name, with the pattern's suffix in place of its own, opens this entry.
bool opensItself(const std::vector<std::string>& names, const std::string& name, std::string_view suffix) {
    std::string asked = name;
    asked.replace(name.size() - suffix.size(), suffix.size(), suffix);
    const bool separated = asked.find('\\') != std::string::npos; // and so leads elsewhere
    return !separated && (asked == name || *findName(names, asked) == name);
}

} // namespace

int TSXfinder::findfirst(const char* pattern) {
    const std::string whole = tree.below(pattern);
    const std::size_t last = whole.rfind('/') + 1; // 0 where there is no directory
    const std::size_t star = std::min(whole.find('*', last), whole.size());
    const std::string_view suffix = std::string_view(whole).substr(std::min(star + 1, whole.size()));
    std::vector<std::string> names;
    findclose();
    passedover.clear();
    folder = whole.substr(0, last);
    const Failure unread = tree.names(folder, names);
    for (const std::string& name : names)
        if (matchesPattern(name, std::string_view(whole).substr(last, star - last), suffix))
            (opensItself(names, name, suffix) ? matches : passedover).push_back(name);
    missing = unread.number == ERROR_PATH_NOT_FOUND;
    failure = unread.isAbsence() ? ERROR_SUCCESS : unread.number;
    return take();
}

int TSXfinder::findnext() {
    return take();
}

// A first match that nobody may write or that is hidden counts as a file, whatever it is.
int TSXfinder::take() {
    constexpr std::uint32_t anyWrite = 0222;
    if (next == matches.size())
        return 0;
    const bool first = next == 0;
    const std::string& name = matches[next++];
    Entry entry;
    entryfailure = tree.look(folder + name, Links::followed, entry).number;
    if (entryfailure == ERROR_SUCCESS && entry.state.kind == FileState::missing) // it was listed
        entryfailure = ERROR_FILE_NOT_FOUND;
    const bool attributes = name[0] == '.' || (entry.state.permissions & anyWrite) == 0;
    const bool counts = entry.state.kind == FileState::directory && !(first && attributes);
    entryname = name.c_str();
    entrykind = counts ? directory : file;
    entryidentity = entry.state.identity;
    entrynames = entry.state.names;
    entryoutside = entryfailure == ERROR_SUCCESS ? entry.outside : "";
    return 1;
}

void TSXfinder::findclose() {
    matches.clear();
    next = 0;
}
