#include "options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <iostream>
#include <string_view>

#include "ending.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "textform.h"
#include "told.h"

namespace {

constexpr const char* solveOption = "--solve";
constexpr const char* solveAllOption = "--solve-all";
constexpr const char* changeKeyOption = "--change-key";
constexpr const char* renameOption = "--rename";

struct Flag {
    const char* names;
    bool Options::*given;
    const char* help;
};
constexpr Flag flags[] = {
    {"--every", &Options::every, "All databases of the home directory"},
    {"-a,--all", &Options::all, "List every key, not only those with something wrong"},
    {"-p,--preen", &Options::preen, "Apply the solutions that delete and clear nothing, until none is left"},
    {"-y,--yes", &Options::yes, "Change the key even where NEW is in use"},
    {"-s,--save", &Options::save, "Write the changed keys to disk"},
    {"--plan", &Options::plan, "Show what the repairs and the save would change, and write nothing"},
    {"--no-undo", &Options::noUndo, "Make no undo file; what is changed then can't be taken back"},
    {"--undo-list", &Options::undoList, "List the undo files of this user, or those about DIRECTORY"},
    {"--forget-interrupted", &Options::forgetInterrupted,
     "Take the database as it stands where a change of it was interrupted and can't be finished"},
    {"--no-lock", &Options::noLock, "Take no hold of the database, for a copy on a read-only medium"},
    {"-q,--quiet", &Options::quiet, "Write no report where nothing is wrong and nothing was done"},
    {"--json", &Options::json, "Write one JSON document to standard output"},
};

struct Value {
    const char* names;
    std::optional<std::string> Options::*given;
    const char* form;
    const char* help;
};
constexpr Value values[] = {
    {"--database", &Options::database, "NAME", "The database of that name in the home directory"},
    {"--home", &Options::home, "DIR", "The home directory, in place of that of the settings"},
    {"-e,--entry", &Options::entry, "KEY", "List every record that uses KEY"},
    {"--explain", &Options::explain, "WHAT",
     "Tell of the problem in that row, or of what has that id, which keys, files and records it is about, "
     "and "
     "what each solution does"},
    {"--known", &Options::known, "FILE",
     "Take what stands in FILE as accepted: it is listed apart and doesn't count; what goes beyond it does"},
    {"--write-known", &Options::writeKnown, "FILE",
     "Write all problems, and what could not be read, to FILE, for --known"},
    {"--report", &Options::report, "FILE", "Write the report as an HTML page to FILE too"},
    {"--undo", &Options::undo, "FILE", "Write the undo file there; default: into $XDG_STATE_HOME/txinspect"},
    {"--restore", &Options::restore, "FILE",
     "Bring DIRECTORY, by default the one that FILE is about, back to what it was before the changes of that "
     "undo "
     "file; what has changed since is refused, or with --yes left"},
    {"--log", &Options::log, "DIR", "Write TXLOG.TXT into DIR"},
};

// What stands on the command line in more than one word or with a form of its own, before it is taken apart.
struct Words {
    std::vector<std::string> solve;
    std::vector<std::string> solveAll;
    std::vector<std::string> changeKey;
    std::vector<std::string> rename;
    bool progress = false;
    bool noProgress = false;
};

struct Step {
    const char* name;
    std::vector<std::string> Words::*given;
    const char* form;
    int words;
    const char* help;
};
constexpr Step steps[] = {
    {solveOption, &Words::solve, "WHAT:N", 1,
     "Apply solution N of the problem WHAT: its row in the list that a plain check prints, or "
     "its id; may be repeated"},
    {solveAllOption, &Words::solveAll, "KIND:N", 1,
     "The same for all problems of a kind, by its number or word"},
    {changeKeyOption, &Words::changeKey, "KEY TYPE N NEW", 4,
     "Give occurrence N of KEY in experiment type TYPE the key NEW; refused where NEW is in "
     "use there. A key is given as it is, or as hex: and its bytes in hex"},
    {renameOption, &Words::rename, "KEY NEW", 2,
     "Give every record that uses KEY the key NEW; refused where NEW is in use"},
};

[[noreturn]] void refuse(const char* option, const std::string& text) {
    throw CLI::ValidationError(option, text);
}

bool readNumber(std::string_view word, int& number) {
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && stop == end;
}

// Takes apart what stands in front of the last colon and the number of the solution behind it.
std::string readSolution(const char* option, const std::string& word, SolveStep& step) {
    step.given = std::string(option) + ' ' + word;
    const std::size_t colon = word.rfind(':');
    if (colon == std::string::npos || !readNumber(word.substr(colon + 1), step.number))
        refuse(option, "'" + word + "' does not end with a colon and the number of a solution");
    return word.substr(0, colon);
}

SolveStep readSolve(const std::string& word) {
    SolveStep step;
    step.id = readSolution(solveOption, word, step);
    if (step.id.find(':') == std::string::npos) {
        if (!readNumber(step.id, step.row))
            refuse(solveOption, "'" + word + "' is not of the form WHAT:N, WHAT the row or id of a problem");
        step.id.clear();
    }
    return step;
}

SolveStep readSolveAll(const std::string& word) {
    SolveStep step;
    step.kind = findkind(readSolution(solveAllOption, word, step));
    if (step.kind == 0)
        refuse(solveAllOption,
               "'" + word + "' is not of the form KIND:N, KIND a number from 1 to 7 or the word of an id");
    return step;
}

// A key as it is given: its bytes, or hex: and two digits for each.
std::string readKey(const char* option, const std::string& word) {
    constexpr std::string_view mark = "hex:";
    if (!word.starts_with(mark))
        return word;
    std::string key;
    for (std::size_t at = mark.size(); at < word.size(); at += 2) {
        unsigned byte = 0;
        const char* end = word.data() + std::min(at + 2, word.size());
        const auto [stop, error] = std::from_chars(word.data() + at, end, byte, 16);
        if (error != std::errc() || stop != word.data() + at + 2 || byte == 0)
            refuse(option, "'" + word + "' is not hex: and two digits for each byte, none of them 00");
        key.push_back(static_cast<char>(byte));
    }
    return key;
}

std::string readNewKey(const char* option, const std::string& word) {
    std::string key = readKey(option, word);
    if (key.size() > maxkeylength)
        refuse(option, "the new key has " + std::to_string(key.size()) + " bytes, and a key has at most " +
                           std::to_string(maxkeylength));
    return key;
}

ChangeKeyStep readChangeKey(const std::vector<std::string>& words) {
    if (words.size() > 4)
        refuse(changeKeyOption, "can be given only once");
    ChangeKeyStep step{readKey(changeKeyOption, words[0]), 0, 0, readNewKey(changeKeyOption, words[3])};
    if (!readNumber(words[1], step.type) || !readNumber(words[2], step.n))
        refuse(changeKeyOption, "TYPE and N are numbers, not '" + words[1] + "' and '" + words[2] + "'");
    return step;
}

RenameStep readRename(const std::vector<std::string>& words) {
    if (words.size() > 2)
        refuse(renameOption, "can be given only once");
    RenameStep step{readKey(renameOption, words[0]), readNewKey(renameOption, words[1])};
    if (step.key.empty() || step.newKey.empty())
        refuse(renameOption, "KEY and NEW are not empty");
    return step;
}

// The help in lines of 80 columns.
class NarrowHelp : public CLI::Formatter {
    std::string make_option(const CLI::Option* option, bool positional) const override {
        constexpr std::size_t column = 26;
        std::string text =
            "  " + make_option_name(option, positional) + (positional ? "" : " " + option->get_type_name());
        text +=
            text.size() < column ? std::string(column - text.size(), ' ') : "\n" + std::string(column, ' ');
        return text + wrapped(make_option_desc(option), 80 - column, column) + '\n';
    }
};

void describe(CLI::App& app, Options& options, Words& words) {
    app.formatter(std::make_shared<NarrowHelp>());
    app.set_version_flag("--version", "txcheck " TX_VERSION);
    app.set_help_flag("-h,--help", "Print this help and leave");
    app.add_option("DIRECTORY", options.directories,
                   "The database directories; without one, the current database of the per-user settings")
        ->type_name("");
    for (const Value& value : values)
        app.add_option(value.names, options.*value.given, value.help)->type_name(value.form);
    for (const Step& step : steps) // all words are taken as they stand, also where they look like options
        app.add_option(step.name, words.*step.given, step.help)
            ->type_name(step.form)
            ->type_size(step.words)
            ->allow_extra_args(false);
    for (const Flag& flag : flags)
        app.add_flag(flag.names, options.*flag.given, flag.help);
    app.add_flag("--progress", words.progress, "Tell the progress; default: only on a terminal");
    app.add_flag("--no-progress", words.noProgress, "Tell no progress");
}

// The steps of both options in the order in which they were given.
void readSolveSteps(const CLI::App& app, const Words& words, Options& options) {
    std::size_t one = 0;
    std::size_t all = 0;
    for (const CLI::Option* option : app.parse_order())
        if (option->check_name(solveOption))
            options.solve.push_back(readSolve(words.solve[one++]));
        else if (option->check_name(solveAllOption))
            options.solve.push_back(readSolveAll(words.solveAll[all++]));
}

// As an unset variable of a script gives it: the log would go to the root of the file system.
void refuseEmptyPaths(const Options& options) {
    for (const Value& value : values) {
        const std::string_view form = value.form;
        if ((form == "FILE" || form == "DIR") && options.*value.given == "")
            refuse(value.names, "the path is empty");
    }
}

// What does not go together, and what is said of it.
void refuseWrong(const Options& options, const Words& words) {
    constexpr const char* alone = "goes with one database alone";
    const bool changes =
        !options.solve.empty() || options.preen || options.changeKey || options.rename || options.save;
    const bool several = options.several();
    const struct {
        bool wrong;
        const char* option;
        const char* text;
    } refusals[] = {
        {words.progress && words.noProgress, "--progress", "does not go with --no-progress"},
        {!options.directories.empty() && (options.database || options.home || options.every), "DIRECTORY",
         "does not go with --database, --every and --home"},
        {options.database && options.every, "--database", "does not go with --every"},
        {options.explain == "", "--explain", "says nothing that is to be explained"},
        {options.undoList && (changes || options.restore), "--undo-list",
         "goes with no repair, and with neither --save nor --restore"},
        {several && !options.solve.empty(), "--solve and --solve-all", alone},
        {several && options.changeKey, changeKeyOption, alone},
        {several && options.rename, renameOption, alone},
        {several && options.log, "--log", alone},
        {several && options.undo, "--undo", alone},
        {several && options.restore, "--restore", alone},
        {several && options.explain, "--explain", alone},
        {options.report && (options.report == options.known || options.report == options.writeKnown),
         "--report", "names the file of --known or --write-known"},
        {options.undo && options.noUndo, "--undo", "does not go with --no-undo"},
        {options.restore && (changes || options.noLock), "--restore",
         "goes with no repair, and with neither --save nor --no-lock"},
        {options.forgetInterrupted && (options.noLock || options.plan), "--forget-interrupted",
         "goes with neither --no-lock nor --plan, which change nothing"},
        {options.noLock && changes, "--no-lock",
         "goes with no repair and no --save: without the hold the database may be in use elsewhere"},
    };
    for (const auto& [wrong, option, text] : refusals)
        if (wrong)
            refuse(option, text);
}

void interpret(const CLI::App& app, const Words& words, Options& options) {
    refuseEmptyPaths(options);
    options.progress = words.progress || (!words.noProgress && isatty(STDERR_FILENO) == 1);
    readSolveSteps(app, words, options);
    if (options.entry)
        options.entry = readKey("--entry", *options.entry);
    if (!words.changeKey.empty())
        options.changeKey = readChangeKey(words.changeKey);
    if (!words.rename.empty())
        options.rename = readRename(words.rename);
    refuseWrong(options, words);
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& status) {
    Options options;
    Words words;
    CLI::App app("Checks and repairs a database of laboratory experiments without a window.", "txcheck");
    app.footer("Exit status: 0 where nothing is wrong and nothing was changed, else the sum of: 1\n"
               "something was changed on the disk, 4 problems or unsaved changes are left, 8\n"
               "something could not be read or done, 32 the person has ended it; or 16, wrong\n"
               "usage, alone. A plan has never 1, and a restore has 0 or 8.");
    describe(app, options, words);
    try {
        app.parse(argc, argv);
        interpret(app, words, options);
        return options;
    } catch (const CLI::Success& wish) { // --help, --version
        status = app.exit(wish);
    } catch (const CLI::ParseError& error) {
        tell(std::string(error.what()) + ". --help tells the usage");
        status = statusUsage;
    }
    return std::nullopt;
}
