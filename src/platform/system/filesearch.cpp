#include "platform/system/filesearch.h"

#include <memory>
#include <string_view>

#include "platform/system/letters.h"
#include "platform/system/listing.h"
#include "platform/system/tree.h"

struct FileSearch {
    Tree& tree;
    std::string directory; // with its separator after it
    std::vector<std::string> matches;
    std::size_t next = 0;
};

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

void describe(Tree& tree, const std::string& name, WIN32_FIND_DATAA& data) {
    constexpr std::uint32_t anyWrite = 0222;
    Entry entry;
    data.failure = tree.look(name, Links::followed, entry).number;
    data.identity = entry.file.identity;
    data.outside = data.failure == ERROR_SUCCESS ? entry.outside : "";
    std::uint32_t attributes = data.cFileName[0] == '.' ? FILE_ATTRIBUTE_HIDDEN : 0;
    if (entry.state.kind == EntryState::directory)
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    if (entry.state.kind != EntryState::missing && (entry.state.permissions & anyWrite) == 0)
        attributes |= FILE_ATTRIBUTE_READONLY;
    data.dwFileAttributes = attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

} // namespace

FindHandle FindFirstFileA(Tree& tree, const std::string& pattern, WIN32_FIND_DATAA& data,
                          std::vector<std::string>& passedOver) {
    passedOver.clear();
    const std::string_view whole = pattern;
    const std::size_t last = whole.find_last_of("/\\") + 1; // 0 where there is no directory
    const std::size_t star = whole.find('*', last);
    if (star == std::string_view::npos)
        return nullptr;
    const std::string_view prefix = whole.substr(last, star - last);
    const std::string_view suffix = whole.substr(star + 1);

    auto search = std::make_unique<FileSearch>(FileSearch{tree, pattern.substr(0, last), {}});
    std::vector<std::string> names;
    Failure failure = tree.names(search->directory, names);
    for (const std::string& name : names)
        if (matchesPattern(name, prefix, suffix))
            (opensItself(names, name, suffix) ? search->matches : passedOver).push_back(name);
    if (FindNextFileA(search.get(), data) != 0)
        return search.release();
    SetLastError(failure ? failure.number : ERROR_FILE_NOT_FOUND);
    return nullptr;
}

int FindNextFileA(FindHandle search, WIN32_FIND_DATAA& data) {
    if (search == nullptr || search->next == search->matches.size())
        return 0;
    data.cFileName = search->matches[search->next++];
    describe(search->tree, search->directory + data.cFileName, data);
    return 1;
}

void FindClose(FindHandle search) {
    const std::unique_ptr<FileSearch> ended(search);
}
