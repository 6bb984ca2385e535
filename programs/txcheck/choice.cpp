#include "choice.h"

#include "changes/restore.h"
#include "platform/system/errors.h"
#include "settings/settings.h"
#include "told.h"

namespace {

std::nullopt_t refuse(const std::string& text) {
    tell(text);
    return std::nullopt;
}

// "There is no database 'Nope' in …; there are Moved, Sound"
std::string noSuchDatabase(const DatabaseSettings& settings) {
    std::string names;
    for (const std::string& name : databaseNames(settings.homeDirectory.c_str()))
        names += (names.empty() ? "; there are " : ", ") + name;
    return std::string("There is no database '") + settings.currentDatabase.c_str() + "' in " +
           settings.homeDirectory.c_str() + (names.empty() ? "; there is none at all" : names);
}

// Of the current database of these settings; empty where it can't be known, which has been told.
std::string directoryIn(DatabaseSettings& settings) {
    const bool read = readSettingsFile(settings);
    const std::uint32_t reason = GetLastError();
    if (read && !settings.databaseDirectory.empty())
        return settings.databaseDirectory.c_str();
    if (read)
        tell(settingsFilePath(settings) + ": the settings file names no directory below [DIR]");
    else if (reason == ERROR_FILE_NOT_FOUND)
        tell(noSuchDatabase(settings));
    else
        tell(settingsFilePath(settings) + ": " + noValidDatabaseText + ", the settings file can't be read (" +
             errorText(reason) + ")");
    return {};
}

std::optional<std::vector<Chosen>> everyDatabase(const DatabaseSettings& settings) {
    std::vector<Chosen> all;
    for (const std::string& name : databaseNames(settings.homeDirectory.c_str())) {
        DatabaseSettings own = settings;
        own.currentDatabase = name.c_str();
        all.push_back({name, directoryIn(own)});
    }
    if (all.empty())
        tell(std::string(settings.homeDirectory.c_str()) + ": there is no database in this home directory");
    return all.empty() ? std::nullopt : std::optional(all);
}

} // namespace

std::optional<std::vector<Chosen>> chooseDatabases(const Options& options) {
    std::vector<Chosen> all;
    for (const std::string& directory : options.directories)
        all.push_back({directory, directory});
    if (!all.empty())
        return all;
    if (options.restore && !options.directoryGiven()) {
        std::string why;
        const std::string recorded = recordeddirectory(*options.restore, why);
        if (!why.empty())
            return refuse(why);
        all.push_back({recorded, recorded});
        return all;
    }
    DatabaseSettings settings;
    readSettingsStore(settings);
    if ((options.home && !settings.homeDirectory.take(*options.home)) ||
        (options.database && !settings.currentDatabase.take(*options.database)))
        return refuse(
            "The home directory or the name of the database is too long: each has at most 1999 bytes");
    if (settings.homeDirectory.empty() || (settings.currentDatabase.empty() && !options.every))
        return refuse(std::string(notStartedText) +
                      ", or give the database directory, or --home and --database, on the command line");
    if (options.every)
        return everyDatabase(settings);
    const std::string directory = directoryIn(settings);
    return directory.empty()
               ? std::nullopt
               : std::optional(std::vector{Chosen{settings.currentDatabase.c_str(), directory}});
}
