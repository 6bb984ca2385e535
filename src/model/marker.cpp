#include "model/marker.h"

#include <algorithm>

#include "files/finder.h"
#include "model/fileclass.h"
#include "platform/system/errors.h"
#include "platform/system/text.h"

const char* const connectedDatabaseText =
    "There is a connected database present. The inspect tool is not intended to check the integrity of an "
    "external "
    "database. Please use the external database tools for this. Do you continue running this inspect tool?";

const char* const markerName = "open_db.txf";

namespace {

bool hasPlainFile(Tree& tree, const char* pattern) {
    TSXfinder finder(tree);
    bool found = false;
    for (int match = finder.findfirst((tree.path() + "/" + pattern).c_str()); match != 0;
         match = finder.findnext())
        found = found || finder.entrykind == TSXfinder::file;
    return found;
}

} // namespace

// One that can't be looked into counts.
bool isDatabase(Tree& tree) {
    const auto has = [&](const char* name) {
        const Failure failure = tree.enter(name);
        return !failure || !failure.isAbsence();
    };
    Entry marker;
    return std::any_of(treedirectories.begin(), treedirectories.end(), has) ||
           std::any_of(std::begin(fileclasses), std::end(fileclasses),
                       [&](const FileClass& format) { return has(format.directory); }) ||
           tree.look(markerName, Links::unfollowed, marker) || marker.state.kind != FileState::missing ||
           hasPlainFile(tree, "*.CMP");
}

std::string noDatabaseText(const char* directory) {
    return "There is no database here: '" + std::string(directory) +
           "' holds neither a directory of a database nor a *.CMP file. Give the directory of a database";
}

HANDLE openMarker(Tree& tree) {
    return CreateFileA(tree, markerName);
}

std::string lockAdvice(const char* databaseDirectory) {
    const std::uint32_t number = GetLastError();
    if (number == ERROR_SHARING_VIOLATION)
        return {};
    std::string text = "\n\nThe lock is the file '" + std::string(databaseDirectory) + "/" + markerName + "'";
    if (number == ERROR_ACCESS_DENIED)
        text += ". Ask its owner, or that of the directory, for the right to write there; txcheck --no-lock "
                "checks "
                "without writing";
    if (number == ERROR_WRITE_PROTECT || number == ERROR_NOT_SUPPORTED)
        text += ". A database on a medium that can't be written or locked is checked by txcheck --no-lock";
    return text;
}

std::string lockFailureText() {
    const std::uint32_t number = GetLastError();
    std::string text = "Unable to open the database";
    if (number == ERROR_SHARING_VIOLATION)
        text += "\nThis database is probably opened by another person";
    text += Text<60>().format("\n\n(Error code %u: ", number);
    text += FormatMessageA(number);
    // A system text ends with a line break, which has no place before the parenthesis.
    const std::size_t lineEnd = text.find_first_of("\r\n", text.size() - 2);
    return text.substr(0, lineEnd) + ")";
}

bool hasConnectedDatabase(Tree& tree) {
    return hasPlainFile(tree, "*.xdb");
}
