// txstart: the start-up program, which chooses the database and starts its inspection.
#include <CLI/CLI.hpp>
#include <QApplication>
#include <QIcon>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "choices.h"
#include "platform/system/standardstreams.h"
#include "platform/window/winapp.h"
#include "reporting/printable.h"
#include "startwindow.h"

namespace {

struct Options {
    std::optional<std::string> home;
    std::optional<std::string> database;
    std::vector<std::string> add; // a name and a directory, or nothing
    bool yes = false;             // add also a directory that holds no database
    bool inspect = false;

    bool nothingAsked() const { return !home && !database && add.empty() && !inspect; }
};

enum Status : int { statusDone = 0, statusFailed = 8, statusUsage = 16 };

constexpr const char* about =
    "Chooses the home directory and the current database, and starts their inspection.\n"
    "Without options it opens its window. With options it does, in this order, what they say.";

void addOptions(CLI::App& app, Options& options) {
    app.set_help_flag("--help", "Print this help and leave");
    app.set_version_flag("--version", "txstart " TX_VERSION, "Print the version and leave");
    app.add_option("--home", options.home,
                   "Make this the home directory, which holds the settings of all databases and\nthe log")
        ->type_name("DIR");
    app.add_option("--add", options.add, "Write the settings file of a new database into the home directory")
        ->type_name("NAME DIRECTORY")
        ->type_size(2) // both are taken as they stand, also where they look like options
        ->allow_extra_args(false);
    app.add_option("--database", options.database, "Make this the current database")->type_name("NAME");
    app.add_flag("-y,--yes", options.yes, "Add a directory also where nothing of a database stands in it");
    app.add_flag("--inspect", options.inspect, "Start txinspect, and wait for its window");
}

// None if the program is to leave with the status: help was given, or the words are wrong, which has been
// told.
std::optional<Options> parseOptions(int argc, char** argv, int& status) {
    Options options;
    CLI::App app(about, "txstart");
    addOptions(app, options);
    try {
        app.parse(argc, argv);
        return options;
    } catch (const CLI::Success& wish) { // --help, --version
        status = app.exit(wish);
    } catch (const CLI::ParseError& error) {
        std::cerr << "txstart: " << printable(error.what()) << ". --help tells the usage" << std::endl;
        status = statusUsage;
    }
    return std::nullopt;
}

std::string add(const Options& options) {
    const std::string doubt = options.yes ? "" : doubtOf(options.add[1]);
    return doubt.empty() ? addDatabase(currentHome(), options.add[0], options.add[1])
                         : doubt + ". --yes adds it all the same";
}

// The reason of the first step that fails, which ends the work; empty on success.
std::string carryOut(const Options& options) {
    std::string reason;
    if (options.home)
        reason = chooseHome(*options.home);
    if (reason.empty() && !options.add.empty())
        reason = add(options);
    if (reason.empty() && options.database)
        reason = chooseDatabase(currentHome(), *options.database);
    if (reason.empty() && options.inspect)
        reason = inspectCurrent();
    return reason;
}

int showWindow(int argc, char** argv) {
    expectDisplay(true);
    QApplication application(argc, argv);
    expectDisplay(false);
    QApplication::setDesktopFileName(QStringLiteral("org.txinspect.TxInspect"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("txinspect")));
    StartWindow window;
    window.show();
    return QApplication::exec();
}

int run(int argc, char** argv) {
    int status = statusDone;
    const std::optional<Options> options = parseOptions(argc, argv, status);
    if (!options)
        return status;
    if (options->nothingAsked())
        return showWindow(argc, argv);
    const std::string reason = carryOut(*options);
    if (reason.empty())
        return statusDone;
    std::fprintf(stderr, "txstart: %s\n", printable(reason).c_str());
    return statusFailed;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    try {
        return run(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "txstart: %s\n", failure.what());
        return statusFailed;
    }
}
