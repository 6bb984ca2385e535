#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <string>

#include "damage.h"

namespace {

constexpr const char* about =
    "Makes a sample database, sound or damaged. Equal options give equal bytes.\n"
    "Where there are fewer entries than the records of a type would need keys, fewer records are made, so "
    "that\n"
    "no key is used twice in a type. With damages at most 2980 files and 39 types of a class are made.";

void addNumbers(CLI::App& app, SampleOptions& options) {
    for (const SampleNumber& number : samplenumbers)
        app.add_option(std::string("--") + number.name, options.*number.value, number.help)
            ->type_name("N")
            ->capture_default_str()
            ->check(CLI::Range(number.least, number.most));
    app.add_option("--seed", options.seed, "Another number gives other keys and values")
        ->type_name("N")
        ->capture_default_str();
    const std::map<std::string, KeyStyle> styles = {
        {"ordered", KeyStyle::ordered}, {"shuffled", KeyStyle::shuffled}, {"prefixed", KeyStyle::prefixed}};
    app.add_option(
           "--keys", options.keys,
           "Order of the keys: ordered, shuffled (default), or prefixed: shuffled, with 30 bytes in common")
        ->type_name("STYLE")
        ->transform(CLI::CheckedTransformer(styles));
}

void addDamages(CLI::App& app, SampleOptions& options) {
    std::string list;
    for (const Damage& damage : damagetable)
        list += std::string(list.empty() ? "" : ", ") + damage.name;
    const auto known = [](const std::string& name) {
        return name == "none" || isdamagename(name) ? std::string() : "no such damage: " + name;
    };
    app.add_option("--damage", options.damages, "none (default), all, or of this list, with commas: " + list)
        ->type_name("LIST")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Validator(known, ""));
}

void addSettings(CLI::App& app, SampleOptions& options) {
    const auto plain = [](const std::string& name) {
        return name.empty() || name.find_first_of("/\\\r\n") != std::string::npos
                   ? std::string("a name is not empty and has no slash, backslash or line end")
                   : std::string();
    };
    const auto given = [](const std::string& path) {
        return path.empty() ? std::string("the path is empty") : std::string();
    };
    CLI::Option* home = app.add_option("--home", options.home,
                                       "Also write the database settings file NAME.dbs into this directory")
                            ->type_name("DIR")
                            ->check(CLI::Validator(given, ""));
    CLI::Option* name = app.add_option("--name", options.name, "Name of the database in the settings")
                            ->type_name("NAME")
                            ->check(CLI::Validator(plain, ""));
    home->needs(name);
    name->needs(home);
    app.add_option("DIRECTORY", options.directory, "Made if missing; has to be empty")
        ->type_name("")
        ->required()
        ->check(CLI::Validator(given, ""));
}

} // namespace

bool parseOptions(int argc, char** argv, SampleOptions& options, int& status) {
    CLI::App app(about, "txsample");
    app.set_help_flag("--help", "Print this help and leave");
    app.set_version_flag("--version", "txsample " TX_VERSION);
    addNumbers(app, options);
    addDamages(app, options);
    addSettings(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        status = app.exit(error, std::cout, std::cerr) == 0 ? sampleMade : wrongUsage;
        return false;
    }
    options.damages.erase(std::remove(options.damages.begin(), options.damages.end(), "none"),
                          options.damages.end());
    return true;
}
