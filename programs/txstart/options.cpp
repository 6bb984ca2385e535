#include "options.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace {

constexpr const char* about =
    "Chooses the home directory and the current database, and starts their inspection.\n"
    "Without options it opens its window. With options it does, in this order, what they say.";

void addOptions(CLI::App& app, Options& options) {
    app.set_help_flag("--help", "Print this help and leave");
    app.set_version_flag("--version", "txstart " TX_VERSION);
    app.add_option("--home", options.home, "Make this the home directory")->type_name("DIR");
    app.add_option("--add", options.add, "Write the settings file of a new database into the home directory")
        ->type_name("NAME DIRECTORY")
        ->type_size(2) // both are taken as they stand, also where they look like options
        ->allow_extra_args(false);
    app.add_option("--database", options.database, "Make this the current database")->type_name("NAME");
    app.add_flag("--inspect", options.inspect, "Start txinspect");
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& status) {
    Options options;
    CLI::App app(about, "txstart");
    addOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        status = app.exit(error, std::cout, std::cerr) == 0 ? statusDone : statusUsage;
        return std::nullopt;
    }
    return options;
}
