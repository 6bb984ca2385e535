// A fuzz target: reads a settings file of any content, and ends the process where what was read, written and
// read again is something else.
#include <cstdio>
#include <cstring>

#include "files/databasefile.h"
#include "tempdir.h"

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    static const TempDir home;
    DatabaseSettings found;
    found.homeDirectory = home.path().c_str();
    found.currentDatabase = "A";
    writeFile(databaseFilePath(found), std::string(data, size));
    if (!readDatabaseFile(found) || std::strlen(found.databaseDirectory.c_str()) > maxsettingsline - 1)
        return 0;
    DatabaseSettings again = found;
    again.databaseDirectory = "";
    if (!writeDatabaseFile(found) || !readDatabaseFile(again) ||
        std::strcmp(again.databaseDirectory.c_str(), found.databaseDirectory.c_str()) != 0 ||
        std::memcmp(again.backgroundColour, found.backgroundColour, sizeof found.backgroundColour) != 0) {
        std::fprintf(stderr, "broken: settings are read as they were written\n");
        std::abort();
    }
    return 0;
}
