#include "model/marker.h"

#include <algorithm>

#include "files/finder.h"
#include "model/fileclass.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/path.h"
#include "platform/system/text.h"

const char* const connectedDatabaseText =
    "There is a connected database present. The inspect tool is not intended to check the integrity of an "
    "external "
    "database. Please use the external database tools for this. Do you continue running this inspect tool?";

const char* const markerName = "open_db.txf";

namespace {

bool hasPlainFile(const std::string& pattern) {
    TSXfinder finder;
    bool found = false;
    for (int match = finder.findfirst(pattern.c_str()); match != 0; match = finder.findnext())
        found = found || finder.entrykind == TSXfinder::file;
    finder.findclose();
    return found || !finder.passedover.empty();
}

} // namespace

bool isDatabase(const char* directory) {
    const std::string below = std::string(directory) + "\\";
    const auto has = [&](const char* name) { return mayBeDirectory((below + name).c_str()); };
    return std::any_of(treedirectories.begin(), treedirectories.end(), has) ||
           std::any_of(std::begin(fileclasses), std::end(fileclasses),
                       [&](const FileClass& format) { return has(format.directory); }) ||
           pathExists(below + markerName) || hasPlainFile(below + "*.CMP");
}

std::string noDatabaseText(const char* directory) {
    return "There is no database here: '" + std::string(directory) +
           "' holds neither a directory of a database nor a *.CMP file. Give the directory of a database";
}

HANDLE openMarker(const char* databaseDirectory) {
    return CreateFileA((std::string(databaseDirectory) + "\\" + markerName).c_str());
}

std::string lockAdvice(const char* databaseDirectory) {
    const std::uint32_t number = GetLastError();
    if (number == ERROR_SHARING_VIOLATION)
        return {};
    std::string text = "\n\nThe lock is the file '" + std::string(databaseDirectory) + "/" + markerName + "'";
    if (number == ERROR_ACCESS_DENIED)
        text += ". Ask its owner, or that of the directory, for the right to write there";
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

bool hasConnectedDatabase(const char* databaseDirectory) {
    return hasPlainFile(std::string(databaseDirectory) + "\\*.xdb");
}
