#include "files/finder.h"

#include "platform/system/errors.h"

int TSXfinder::findfirst(const char* pattern) {
    WIN32_FIND_DATAA match;
    handle = FindFirstFileA(tree, tree.below(pattern), match, passedover);
    const std::uint32_t number = handle == nullptr ? GetLastError() : ERROR_SUCCESS;
    missing = number == ERROR_PATH_NOT_FOUND;
    failure = isAbsence(number) ? ERROR_SUCCESS : number;
    if (handle == nullptr)
        return 0;
    take(match, match.dwFileAttributes == FILE_ATTRIBUTE_DIRECTORY);
    return 1;
}

int TSXfinder::findnext() {
    WIN32_FIND_DATAA match;
    if (FindNextFileA(handle, match) == 0)
        return 0;
    take(match, (match.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
    return 1;
}

void TSXfinder::take(const WIN32_FIND_DATAA& match, bool isdirectory) {
    entryname = match.cFileName.c_str();
    entrykind = isdirectory ? directory : file;
    entryidentity = match.identity;
    entryoutside = match.outside;
    entryfailure = match.failure;
}

void TSXfinder::findclose() {
    FindClose(handle);
    handle = nullptr;
}
