#include "options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <string_view>

#include "model/datafile.h"
#include "status.h"

namespace {

// What stands on the command line in more than one word or with a form of its own, before it is taken apart.
struct Words {
    std::vector<std::string> solve;
    std::vector<std::string> changeKey;
    bool progress = false;
    bool noProgress = false;
};

bool readNumber(std::string_view word, int& number) {
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && stop == end;
}

SolveStep readSolveStep(const std::string& word) {
    SolveStep step{};
    const std::size_t colon = word.find(':');
    if (colon == std::string::npos || !readNumber(word.substr(0, colon), step.row) ||
        !readNumber(word.substr(colon + 1), step.number))
        throw CLI::ValidationError("--solve", "'" + word + "' is not of the form ROW:N, two numbers from 1");
    return step;
}

ChangeKeyStep readChangeKeyStep(const std::vector<std::string>& words) {
    ChangeKeyStep step{words[0], 0, 0, words[3]};
    if (!readNumber(words[1], step.type) || !readNumber(words[2], step.n))
        throw CLI::ValidationError("--change-key",
                                   "TYPE and N are numbers, not '" + words[1] + "' and '" + words[2] + "'");
    if (step.newKey.size() > maxkeylength)
        throw CLI::ValidationError("--change-key", "the new key has " + std::to_string(step.newKey.size()) +
                                                       " bytes, and a key has at most " +
                                                       std::to_string(maxkeylength));
    return step;
}

void describe(CLI::App& app, Options& options, Words& words) {
    app.set_version_flag("--version", "txcheck " TX_VERSION);
    app.set_help_flag("--help", "Print this help and leave");
    app.add_option("DIRECTORY", options.directory,
                   "The database directory; without it, the current database of the per-user settings");
    app.add_flag("-a,--all", options.all, "List every key, not only those with something wrong");
    app.add_option("-e,--entry", options.entry, "List every record that uses KEY")->type_name("KEY");
    app.add_option(
           "--solve", words.solve,
           "Apply solution N of the problem in row ROW of the list as it then stands; may be repeated")
        ->type_name("ROW:N")
        ->allow_extra_args(false);
    app.add_flag("-p,--preen", options.preen, "Apply the solutions that lose nothing until none is left");
    app.add_option(
           "--change-key", words.changeKey,
           "Give occurrence N of KEY in experiment type TYPE the key NEW; refused where NEW is in use there")
        ->type_name("KEY TYPE N NEW")
        ->type_size(4) // all four are taken as they stand, also where they look like options
        ->allow_extra_args(false);
    app.add_flag("-y,--yes", options.yes, "Change the key even where NEW is in use");
    app.add_flag("-s,--save", options.save, "Write the changed keys to disk");
    app.add_option("--log", options.log, "Write TXLOG.TXT into DIR")->type_name("DIR");
    app.add_flag("--no-lock", options.noLock,
                 "Take no hold of the database, for a copy on a read-only medium");
    app.add_flag("--json", options.json, "Write one JSON document to standard output");
    app.add_flag("--progress,!--no-progress", options.progress,
                 "Tell the progress; default: only on a terminal");
}

void interpret(Options& options, const Words& words) {
    if (words.progress && words.noProgress)
        throw CLI::ValidationError("--progress", "does not go with --no-progress");
    options.progress = words.progress || (!words.noProgress && isatty(STDERR_FILENO) == 1);
    for (const std::string& word : words.solve)
        options.solve.push_back(readSolveStep(word));
    if (words.changeKey.size() > 4)
        throw CLI::ValidationError("--change-key", "can be given only once");
    if (!words.changeKey.empty())
        options.changeKey = readChangeKeyStep(words.changeKey);
    const bool changes = !options.solve.empty() || options.preen || options.changeKey || options.save;
    if (options.noLock && changes)
        throw CLI::ValidationError("--no-lock",
                                   "goes with no repair and no --save: without the hold the database may "
                                   "be in use elsewhere");
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& status) {
    Options options;
    Words words;
    CLI::App app("Checks and repairs a database of laboratory experiments without a window.", "txcheck");
    app.footer("Exit status: 0 nothing wrong, 1 all problems solved and saved, 4 problems or unsaved changes "
               "are left,\n"
               "8 the work could not be done, 16 wrong usage.");
    describe(app, options, words);
    try {
        app.parse(argc, argv);
        interpret(options, words);
        return options;
    } catch (const CLI::ParseError& error) {
        status = app.exit(error) == 0 ? statusClean : statusUsage;
        return std::nullopt;
    }
}
