#include "options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "reporting/printable.h"

namespace {

constexpr const char* about =
    "Chooses the home directory and the current database, and starts their inspection.\n"
    "Without options it opens its window. With options it does, in this order, what they say.";

void addOptions(CLI::App& app, Options& options) {
    app.set_help_flag("--help", "Print this help and leave");
    app.set_version_flag("--version", "txstart " TX_VERSION);
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

} // namespace

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
