#include "choices.h"

#include <filesystem>

#include "model/marker.h"
#include "platform/system/errors.h"
#include "platform/system/person.h"
#include "platform/system/tree.h"
#include "settings/settings.h"

namespace {

constexpr std::string_view extension = ".dbs";

DatabaseSettings readStore() {
    DatabaseSettings settings;
    readSettingsStore(settings);
    return settings;
}

DatabaseSettings settingsOf(const std::string& home, const std::string& name) {
    DatabaseSettings settings;
    settings.homeDirectory = home.c_str();
    settings.currentDatabase = name.c_str();
    return settings;
}

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

// The directory's absolute path, without a separator at its end; empty, with the reason, if it is no
// directory or its path can't stand in the settings.
std::string absoluteDirectory(const std::string& directory, std::string& reason) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::canonical(resolvePath(directory), error);
    if (error || !std::filesystem::is_directory(path, error))
        reason = "There is no directory " + quoted(directory) + " that can be entered";
    else if (path.string().size() > maxsettingsline)
        reason = "The path of the directory is too long: it has at most " + std::to_string(maxsettingsline) +
                 " bytes";
    else if (path.string().find_first_of("\r\n") != std::string::npos)
        reason = "The path of the directory has a line break in it, which the settings can't hold";
    return reason.empty() ? path.string() : std::string();
}

std::string writeStore(const DatabaseSettings& settings) {
    return writeSettingsStore(settings) ? std::string() : "The settings can't be written";
}

std::string unreadable(const DatabaseSettings& settings) {
    return "There is no database " + quoted(settings.currentDatabase.c_str()) + " in the home directory " +
           quoted(settings.homeDirectory.c_str()) + ": " + quoted(settingsFilePath(settings)) +
           " can't be read. " + errorText(GetLastError());
}

std::string writeDirectory(DatabaseSettings settings, const std::string& directory) {
    std::string reason;
    settings.databaseDirectory = absoluteDirectory(directory, reason).c_str();
    if (reason.empty() && !writeSettingsFile(settings))
        reason = "The settings of the database can't be written in " +
                 quoted(settings.homeDirectory.c_str()) + ". " + errorText(GetLastError());
    return reason;
}

} // namespace

const char* const endedEarly = "The program txinspect has ended before its window was there";

std::string currentHome() {
    return readStore().homeDirectory.c_str();
}

std::string currentDatabaseName() {
    return readStore().currentDatabase.c_str();
}

std::string directoryOfDatabase(const std::string& home, const std::string& name) {
    DatabaseSettings settings = settingsOf(home, name);
    readSettingsFile(settings);
    return settings.databaseDirectory.c_str();
}

std::string chooseHome(const std::string& home) {
    std::string reason;
    const std::string path = absoluteDirectory(home, reason);
    return reason.empty() ? writeStore(settingsOf(path, "")) : reason;
}

std::string chooseDatabase(const std::string& home, const std::string& name) {
    if (home.empty())
        return "No home directory is chosen yet";
    DatabaseSettings settings = settingsOf(home, name);
    if (name.empty() || !readSettingsFile(settings))
        return unreadable(settings);
    return writeStore(settings);
}

std::string doubtOf(const std::string& directory) {
    Tree tree;
    if (tree.open(resolvePath(directory)) || isDatabase(tree))
        return {};
    return quoted(directory) + " holds neither a directory of a database nor a *.CMP file";
}

std::string addDatabase(const std::string& home, const std::string& name, const std::string& directory) {
    if (home.empty())
        return "No home directory is chosen yet";
    if (name.empty() || name.find_first_of("/\\\r\n") != std::string::npos)
        return "The name of a database is not empty and has no slash, backslash or line break in it";
    if (pathExists(home + "/" + name + std::string(extension)))
        return "There is a database " + quoted(name) + " already";
    return writeDirectory(settingsOf(home, name), directory);
}

std::string moveDatabase(const std::string& home, const std::string& name, const std::string& directory) {
    DatabaseSettings settings = settingsOf(home, name);
    return readSettingsFile(settings) ? writeDirectory(settings, directory) : unreadable(settings);
}

std::string forgetDatabase(const std::string& home, const std::string& name) {
    Tree directory;
    Entry entry;
    const std::string file = name + std::string(extension);
    Failure failure = directory.open(home);
    if (!failure)
        failure = directory.look(file, Links::unfollowed, entry);
    if (!failure)
        failure = directory.remove(file, entry.state);
    return failure ? quoted(home + "/" + file) + " can't be removed. " + failure.text() : std::string();
}

std::string startInspecting(StartedProgram& tool) {
    constexpr int started = 32; // and above
    const int result = tool.start("txinspect");
    if (result >= started)
        return {};
    return "The program txinspect can't be started. " + errorText(static_cast<std::uint32_t>(result));
}

std::string inspectCurrent() {
    StartedProgram tool;
    std::string reason = startInspecting(tool);
    StartNews news = StartNews::failed;
    for (std::string text; reason.empty() && news != StartNews::stands;)
        if (!tool.hear(news, text))
            reason = endedEarly;
        else if (news == StartNews::refused || news == StartNews::failed)
            reason = text;
    return reason;
}
