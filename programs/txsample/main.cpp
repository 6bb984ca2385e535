// txsample: makes sample databases for the demo, the tests and the benchmarks.
#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "damage.h"
#include "platform/system/standardstreams.h"
#include "reporting/printable.h"
#include "sample.h"

namespace {

enum ExitStatus : int {
    sampleMade = 0,
    couldNotWork = 8, // the directory can't be made, used or written
    wrongUsage = 16,
};

constexpr const char* about =
    "Makes a sample database, sound or damaged. Equal options give equal bytes.\n"
    "Where there are fewer entries than the records of a type would need keys, fewer\n"
    "records are made, so that no key is used twice in a type. With damages at most\n"
    "2980 files and 39 types of a class are made.";
const std::map<std::string, KeyStyle> styles = {
    {"ordered", KeyStyle::ordered}, {"shuffled", KeyStyle::shuffled}, {"prefixed", KeyStyle::prefixed}};

// After the name of an option stands its form alone. Ranges and defaults are told by the help's text.
class Formatter : public CLI::Formatter {
    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string form = option->get_type_name();
        return form.empty() ? "" : " " + form;
    }
};

void addNumbers(CLI::App& app, SampleOptions& options) {
    for (const SampleNumber& number : samplenumbers)
        app.add_option(std::string("--") + number.name, options.*number.value,
                       std::string(number.help) + ": " + std::to_string(number.least) + " to " +
                           std::to_string(number.most) + ", default " + std::to_string(options.*number.value))
            ->type_name("N");
    app.add_option("--seed", options.seed, "Another number gives other keys and values; default 1")
        ->type_name("N");
}

// The names of all damages, in lines that fit beside the names of the options.
std::string damageList() {
    constexpr std::size_t width = 52;
    std::string list;
    std::size_t line = 0;
    for (const Damage& damage : damagetable) {
        const std::string word =
            std::string(list.empty() ? "" : ",") + (list.empty() ? "" : " ") + damage.name;
        const bool next = line + word.size() > width;
        list += next ? ",\n" + word.substr(2) : word;
        line = next ? word.size() : line + word.size();
    }
    return list;
}

void addWords(CLI::App& app, SampleOptions& options, std::string& style) {
    app.add_option("--keys", style,
                   "Order of the keys: ordered, shuffled (default), or\nprefixed, which is shuffled with 30 "
                   "bytes in common")
        ->type_name("STYLE");
    app.add_option("--damage", options.damages,
                   "none (default), all, or some of these, with commas:\n" + damageList())
        ->type_name("LIST")
        ->delimiter(',')
        ->allow_extra_args(false);
    app.add_option("--home", options.home,
                   "Also write the database settings file NAME.dbs\nthere; goes with --name")
        ->type_name("DIR");
    app.add_option("--name", options.name, "Name of the database in the settings")->type_name("NAME");
    app.add_option("DIRECTORY", options.directory, "Made if missing; has to be empty")
        ->type_name("")
        ->required();
}

// Takes what the words mean; refuses what they can't.
void interpret(const std::string& style, SampleOptions& options) {
    const auto found = styles.find(style);
    if (found == styles.end())
        throw CLI::ValidationError("--keys", "there is no order '" + style + "'");
    options.keys = found->second;
    std::erase(options.damages, "none");
    const std::string refusal = unusable(options);
    if (!refusal.empty())
        throw CLI::ValidationError(refusal);
}

// Fills the options. Returns true, or false with the status to leave with: help and version have then been
// printed to standard output, what is wrong to standard error.
bool parseOptions(int argc, char** argv, SampleOptions& options, int& status) {
    CLI::App app(about, "txsample");
    app.formatter(std::make_shared<Formatter>());
    app.set_help_flag("--help", "Print this help and leave");
    app.set_version_flag("--version", "txsample " TX_VERSION, "Print the version and leave");
    std::string style = "shuffled";
    addNumbers(app, options);
    addWords(app, options, style);
    try {
        app.parse(argc, argv);
        interpret(style, options);
        return true;
    } catch (const CLI::Success& wish) { // --help, --version
        status = app.exit(wish);
    } catch (const CLI::ParseError& error) {
        std::cerr << "txsample: " << printable(error.what()) << ". --help tells the usage" << std::endl;
        status = wrongUsage;
    }
    return false;
}

void printResult(const SampleOptions& options, const SampleResult& result) {
    std::cout << printable(options.directory) << ": " << result.datafiles << " data files with "
              << result.records << " records, " << result.sidefiles << " side files, damages:";
    if (result.damages.empty())
        std::cout << " none";
    for (const std::string& damage : result.damages)
        std::cout << ' ' << damage;
    std::cout << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    SampleOptions options;
    int status = sampleMade;
    try {
        if (parseOptions(argc, argv, options, status))
            printResult(options, makeSample(options));
    } catch (const std::exception& failure) {
        std::cerr << "txsample: " << printable(failure.what()) << std::endl;
        status = couldNotWork;
    }
    return status;
}
