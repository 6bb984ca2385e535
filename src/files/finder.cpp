#include "files/finder.h"

#include <string>
#include <vector>

#include "reporting/log.h"

int TSXfinder::findfirst(const char* pattern) {
    WIN32_FIND_DATAA match;
    std::vector<std::string> passedOver;
    handle = FindFirstFileA(pattern, match, passedOver);
    for (const std::string& name : passedOver)
        logLine(
            Text<600>().format("   passed over '%s': another file is read under this name", name.c_str()));
    if (handle == nullptr)
        return 0;
    entryname = match.cFileName.c_str();
    entrykind = match.dwFileAttributes == FILE_ATTRIBUTE_DIRECTORY ? directory : file;
    return 1;
}

int TSXfinder::findnext() {
    WIN32_FIND_DATAA match;
    if (FindNextFileA(handle, match) == 0)
        return 0;
    entryname = match.cFileName.c_str();
    entrykind = (match.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? directory : file;
    return 1;
}

void TSXfinder::findclose() {
    FindClose(handle);
    handle = nullptr;
}
