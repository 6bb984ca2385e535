#include "model/marker.h"

#include "files/finder.h"
#include "platform/system/errors.h"
#include "platform/system/text.h"

const char* const connectedDatabaseText =
    "There is a connected database present. The inspect tool is not intended to check the integrity of an "
    "external "
    "database. Please use the external database tools for this. Do you continue running this inspect tool?";

HANDLE openMarker(const char* databaseDirectory) {
    return CreateFileA((std::string(databaseDirectory) + "\\open_db.txf").c_str());
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

int hasConnectedDatabase(const char* databaseDirectory) {
    TSXfinder finder;
    int found = 0;
    for (int match = finder.findfirst((std::string(databaseDirectory) + "\\*.xdb").c_str()); match != 0;
         match = finder.findnext())
        if (finder.entrykind == TSXfinder::file)
            found = 1;
    finder.findclose();
    return found;
}
