#include "choice.h"

#include "platform/system/errors.h"
#include "settings/settings.h"
#include "told.h"
#include "undo/restore.h"

namespace {

std::nullopt_t refuse(const std::string& text) {
    tell(text);
    return std::nullopt;
}

} // namespace

std::optional<std::string> chooseDirectory(const Options& options) {
    if (options.directory)
        return options.directory;
    if (options.restore && !options.database && !options.home) {
        std::string why;
        const std::string recorded = recordedDirectory(*options.restore, why);
        return why.empty() ? std::optional(recorded) : refuse(why);
    }
    DatabaseSettings settings;
    readSettingsStore(settings);
    if ((options.home && !settings.homeDirectory.take(*options.home)) ||
        (options.database && !settings.currentDatabase.take(*options.database)))
        return refuse(
            "The home directory or the name of the database is too long: each has at most 1999 bytes");
    if (settings.homeDirectory.empty() || settings.currentDatabase.empty())
        return refuse(std::string(notStartedText) +
                      ", or give the database directory, or --home and --database, on the command line");
    if (!readDatabaseFile(settings))
        return refuse(databaseFilePath(settings) + ": " + noValidDatabaseText +
                      ", the settings file can't be read (" + errorText(GetLastError()) + ")");
    if (settings.databaseDirectory.empty())
        return refuse(databaseFilePath(settings) + ": the settings file names no directory below [DIR]");
    return settings.databaseDirectory.c_str();
}
