#include "app/settings.h"

#include <cstdio>
#include <string>

#include "app/edition.h"
#include "platform/system/bytestream.h"
#include "platform/system/registry.h"

const char* const notStartedText = "The software is not properly started. Please run the startup program";
const char* const noValidDatabaseText = "No valid database specified";

namespace {

constexpr const char* homeValue = "Home Directory";
constexpr const char* currentValue = "Current Database";

std::string storePath() {
    return std::string("SOFTWARE\\") + makerName(makerId(), productId()) + "\\" +
           productName(makerId(), productId()) + "\\1.0";
}

std::string databaseFilePath(const DatabaseSettings& settings) {
    return std::string(settings.homeDirectory) + "\\" + settings.currentDatabase.c_str() + ".dbs";
}

// Reads one line and cuts it at its first carriage return or line feed. At the end of the file the line is
// left as it is. False if the line was longer than what was read of it, as far as that can be seen.
bool readLine(ByteStream& stream, std::string& line) {
    std::string text;
    char byte = '\0';
    while (text.size() < maxsettingsline && stream.read(&byte, 1) == 1) {
        text.push_back(byte);
        if (byte == '\n')
            break;
    }
    if (!text.empty())
        line = text.substr(0, text.find_first_of(std::string("\r\n\0", 3)));
    return text.size() < maxsettingsline || byte == '\n';
}

// Reads a directory's line with all its pieces: cut, it could name another directory.
void readDirectory(ByteStream& stream, std::string& directory) {
    for (bool whole = readLine(stream, directory); !whole;) {
        std::string piece;
        whole = readLine(stream, piece);
        directory += piece;
    }
}

void readSections(ByteStream& stream, DatabaseSettings& settings) {
    std::string line;
    std::string directory = settings.databaseDirectory.c_str();
    std::string colours;
    while (!stream.atEnd()) {
        readLine(stream, line);
        if (line == "[DIR]")
            readDirectory(stream, directory);
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
    HKEY key;
    if (RegOpenKeyExA(storePath().c_str(), key) != 0)
        return 0;
    std::string home;
    std::string current;
    const int homeResult = RegQueryValueExA(key, homeValue, home);
    const int currentResult = RegQueryValueExA(key, currentValue, current);
    RegCloseKey(key);
    settings.homeDirectory = home.c_str();
    settings.currentDatabase = current.c_str();
    return homeResult == 0 && currentResult == 0 ? 1 : 0;
}

int writeSettingsStore(const DatabaseSettings& settings) {
    HKEY key;
    RegCreateKeyExA(storePath().c_str(), key);
    int result = 1;
    const auto write = [&](const char* name, const char* value) {
        if (*value != '\0' && RegSetValueExA(key, name, value) != 0)
            result = 0;
    };
    write(homeValue, settings.homeDirectory);
    write(currentValue, settings.currentDatabase);
    RegCloseKey(key);
    return result;
}

int readDatabaseFile(DatabaseSettings& settings) {
    ByteStream stream;
    if (!stream.open(databaseFilePath(settings).c_str(), OpenMode::read))
        return 0;
    readSections(stream, settings);
    stream.close();
    return 1;
}

int writeDatabaseFile(const DatabaseSettings& settings) {
    const std::int32_t* const c = settings.backgroundColour;
    std::string text = std::string("[DIR]\n") + settings.databaseDirectory.c_str() + "\n[BACKCOL]\n";
    text += Text<60>().format("%d %d %d\n", c[0], c[1], c[2]);
    ByteStream stream;
    if (!stream.open(databaseFilePath(settings).c_str(), OpenMode::write))
        return 0;
    const bool written = stream.write(text.data(), text.size()) == text.size();
    return stream.close() && written ? 1 : 0;
}

const char* readSettings(DatabaseSettings& settings) {
    if (readSettingsStore(settings) == 0)
        return notStartedText;
    return readDatabaseFile(settings) == 0 ? noValidDatabaseText : nullptr;
}
