#include "app/settings.h"

#include <cstdio>
#include <string>

#include "app/edition.h"
#include "platform/system/bytestream.h"
#include "platform/system/registry.h"

const char* const notStartedText = "The software is not properly started. Please run the startup program";
const char* const noValidDatabaseText = "No valid database specified";

namespace {

constexpr std::size_t maxlinelength = 598; // a longer line is taken as several

// Reads one line and cuts it at its first carriage return or line feed. At the end of the file the line is
// left as it is.
void readLine(ByteStream& stream, std::string& line) {
    std::string text;
    char byte = '\0';
    while (text.size() < maxlinelength && stream.read(&byte, 1) == 1) {
        text.push_back(byte);
        if (byte == '\n')
            break;
    }
    if (!text.empty())
        line = text.substr(0, text.find_first_of(std::string("\r\n\0", 3)));
}

void readSections(ByteStream& stream, DatabaseSettings& settings) {
    std::string line;
    std::string directory = settings.databaseDirectory.c_str();
    std::string colours;
    while (!stream.atEnd()) {
        readLine(stream, line);
        if (line == "[DIR]")
            readLine(stream, directory);
        if (line == "[BACKCOL]") {
            readLine(stream, colours);
            std::int32_t* const c = settings.backgroundColour;
            std::sscanf(colours.c_str(), "%d %d %d", &c[0], &c[1], &c[2]);
        }
    }
    settings.databaseDirectory = directory.c_str();
}

} // namespace

int readSettingsStore(DatabaseSettings& settings) {
    Text<200> path;
    path.format("SOFTWARE\\%s\\%s\\1.0", makerName(makerId(), productId()),
                productName(makerId(), productId()));
    HKEY key;
    if (RegOpenKeyExA(path, key) != 0)
        return 0;
    std::string home;
    std::string current;
    const int homeResult = RegQueryValueExA(key, "Home Directory", home);
    const int currentResult = RegQueryValueExA(key, "Current Database", current);
    RegCloseKey(key);
    settings.homeDirectory = home.c_str();
    settings.currentDatabase = current.c_str();
    return homeResult == 0 && currentResult == 0 ? 1 : 0;
}

int readDatabaseFile(DatabaseSettings& settings) {
    ByteStream stream;
    const std::string path =
        std::string(settings.homeDirectory) + "\\" + settings.currentDatabase.c_str() + ".dbs";
    if (!stream.open(path.c_str(), OpenMode::read))
        return 0;
    readSections(stream, settings);
    stream.close();
    return 1;
}

const char* readSettings(DatabaseSettings& settings) {
    if (readSettingsStore(settings) == 0)
        return notStartedText;
    return readDatabaseFile(settings) == 0 ? noValidDatabaseText : nullptr;
}
