#include "platform/system/filesearch.h"

#include <memory>
#include <string_view>

#include <sys/stat.h>

#include "platform/system/letters.h"
#include "platform/system/listing.h"
#include "platform/system/path.h"
#include "platform/system/posix.h"

struct FileSearch {
    std::string directory; // with its separator behind it
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

void describe(const std::string& path, WIN32_FIND_DATAA& data) {
    std::uint32_t attributes = data.cFileName[0] == '.' ? FILE_ATTRIBUTE_HIDDEN : 0;
    struct stat state = {};
    data.identity = {};
    data.failure = ERROR_SUCCESS;
    if (stat(path.c_str(), &state) == 0) {
        data.identity = {state.st_dev, state.st_ino};
        if (S_ISDIR(state.st_mode))
            attributes |= FILE_ATTRIBUTE_DIRECTORY;
        if ((state.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
            attributes |= FILE_ATTRIBUTE_READONLY;
    } else {
        setLastErrorFromErrno(errno, path);
        data.failure = GetLastError();
    }
    data.dwFileAttributes = attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

} // namespace

FindHandle FindFirstFileA(const char* pattern, WIN32_FIND_DATAA& data, std::vector<std::string>& passedOver) {
    passedOver.clear();
    const std::string_view whole = pattern;
    const std::size_t last = whole.find_last_of("/\\") + 1; // 0 where there is no directory
    const std::size_t star = whole.find('*', last);
    if (star == std::string_view::npos || injectedFault(DiskOperation::open))
        return nullptr;
    const std::string_view prefix = whole.substr(last, star - last);
    const std::string_view suffix = whole.substr(star + 1);

    auto search = std::make_unique<FileSearch>();
    search->directory = "./";
    if (last > 0 && !findPath(whole.substr(0, last), search->directory))
        return nullptr;
    std::vector<std::string> names;
    const bool readable = readNames(search->directory, names);
    for (const std::string& name : names)
        if (matchesPattern(name, prefix, suffix))
            (opensItself(names, name, suffix) ? search->matches : passedOver).push_back(name);
    if (FindNextFileA(search.get(), data) != 0)
        return search.release();
    if (readable)
        SetLastError(ERROR_FILE_NOT_FOUND);
    return nullptr;
}

int FindNextFileA(FindHandle search, WIN32_FIND_DATAA& data) {
    if (search == nullptr || search->next == search->matches.size())
        return 0;
    data.cFileName = search->matches[search->next++];
    describe(search->directory + data.cFileName, data);
    return 1;
}

void FindClose(FindHandle search) {
    const std::unique_ptr<FileSearch> ended(search);
}
