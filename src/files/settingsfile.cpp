#include "files/settingsfile.h"

#include <cstdio>
#include <string>

#include "files/finder.h"
#include "platform/system/bytestream.h"

namespace {

constexpr std::string_view extension = ".dbs";

// Reads one line and cuts it at its first carriage return or line feed. At the end of the file the line is
// left as it is. False if it may go on after what was read of it.
bool readLine(ByteStream& stream, std::string& line) {
    std::string text;
    char byte = '\0';
    while (text.size() < maxsettingsline && stream.read(&byte, 1) == 1) {
        text.push_back(byte);
        if (byte == '\n')
            break;
    }
    const std::size_t end = text.find_first_of(std::string("\r\n\0", 3));
    if (!text.empty())
        line = text.substr(0, end);
    return text.size() < maxsettingsline || end != std::string::npos;
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
    while (!stream.atEnd() && stream.readFailure() == 0) {
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

std::string settingsFilePath(const DatabaseSettings& settings) {
    return std::string(settings.homeDirectory) + "/" + settings.currentDatabase.c_str() + ".dbs";
}

std::vector<std::string> databaseNames(const std::string& home) {
    std::vector<std::string> names;
    Tree directory;
    if (directory.open(home))
        return names;
    TSXfinder finder(directory);
    for (int match = finder.findfirst((home + "/*" + std::string(extension)).c_str()); match != 0;
         match = finder.findnext()) {
        const std::string_view name = finder.entryname.view();
        if (finder.entrykind == TSXfinder::file && name.size() > extension.size())
            names.emplace_back(name.substr(0, name.size() - extension.size()));
    }
    return names;
}

bool readSettingsFile(DatabaseSettings& settings) {
    ByteStream stream;
    if (!stream.open(settingsFilePath(settings).c_str(), OpenMode::read))
        return false;
    DatabaseSettings found = settings;
    readSections(stream, found);
    if (stream.readFailure() != 0) // half of a settings file could name another directory
        return false;
    settings = found;
    return true;
}

bool writeSettingsFile(const DatabaseSettings& settings) {
    const std::int32_t* const c = settings.backgroundColour;
    std::string text = std::string("[DIR]\n") + settings.databaseDirectory.c_str() + "\n[BACKCOL]\n";
    text += Text<60>().format("%d %d %d\n", c[0], c[1], c[2]);
    ByteStream stream;
    if (!stream.open(settingsFilePath(settings).c_str(), OpenMode::write))
        return false;
    const bool written = stream.write(text.data(), text.size()) == text.size();
    return stream.close() && written;
}
