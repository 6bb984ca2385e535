#include "session.h"

#include <cstdio>

#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/marker.h"
#include "model/problem.h"
#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/filesearch.h"
#include "platform/system/messagebox.h"
#include "reporting/log.h"
#include "reporting/report.h"
#include "status.h"

Session::Session(const Options& given) : database(""), options(given) {
    setReport([this](const char* text, const char* title, std::uint32_t flags) {
        return answer(text, title, flags);
    });
    if (options.progress)
        database.fileread = [this](const TSXdatafile& file) { showProgress(file); };
}

Session::~Session() {
    endLog();
    setReport({});
    if (marker != INVALID_HANDLE_VALUE)
        CloseHandle(marker);
}

bool Session::refuse(const std::string& text) {
    clearProgress();
    std::fprintf(stderr, "txcheck: %s\n", text.c_str());
    failed = true;
    return false;
}

int Session::answer(const char* text, const char* title, std::uint32_t flags) {
    clearProgress();
    if ((flags & MB_TYPEMASK) == MB_YESNO) {
        std::fprintf(stderr, "txcheck: %s: %s %s\n", title, text,
                     options.yes ? "Yes" : "No (--yes would say Yes)");
        return options.yes ? IDYES : IDNO;
    }
    std::fprintf(stderr, "txcheck: %s: %s\n", title, text);
    failed = true;
    return IDOK;
}

bool Session::open(const std::string& directory) {
    if (directory.empty())
        return refuse("The path of the database directory is empty");
    if (directory.size() >= decltype(database.directory)::capacity())
        return refuse("The path of the database directory is too long: it has at most " +
                      std::to_string(decltype(database.directory)::capacity() - 1) + " bytes");
    if (!options.noLock && !hold(directory))
        return false;
    if (!readable(directory))
        return false;
    if (hasConnectedDatabase(directory.c_str()) == 1)
        std::fprintf(stderr, "txcheck: Warning: %s It goes on\n", connectedDatabaseText);
    if (options.log && startLog(1, options.log->c_str()) == 0)
        return false;
    database.directory = directory.c_str();
    return true;
}

bool Session::hold(const std::string& directory) {
    marker = openMarker(directory.c_str());
    if (marker == INVALID_HANDLE_VALUE)
        return refuse(directory + ": " + lockFailureText());
    return true;
}

// A directory that is there and can't be read would look as if it were empty, and the repairs would act on
// that.
bool Session::readable(const std::string& directory) {
    std::vector<std::string> paths = {directory, directory + "/Library"};
    for (const FileClass& format : fileclasses)
        paths.push_back(directory + "/" + format.directory);
    for (const std::string& path : paths) {
        WIN32_FIND_DATAA match;
        std::vector<std::string> passedOver;
        FindHandle search = FindFirstFileA((path + "/*").c_str(), match, passedOver);
        FindClose(search);
        const std::uint32_t error = search == nullptr ? GetLastError() : ERROR_FILE_NOT_FOUND;
        const bool missing = error == ERROR_PATH_NOT_FOUND && path != directory;
        if (error == ERROR_FILE_NOT_FOUND || missing)
            continue;
        const std::string text = FormatMessageA(error);
        return refuse(path + ": Unable to read the directory (Error code " + std::to_string(error) + ": " +
                      text.substr(0, text.find_first_of("\r\n")) + ")");
    }
    return true;
}

void Session::showProgress(const TSXdatafile& file) {
    ++filesRead;
    recordsRead += file.keycount;
    if (filesRead % 16 == 1)
        std::fprintf(stderr, "\rReading %-6s  %d files, %ld records ", fileclasses[file.classid].directory,
                     filesRead, recordsRead);
}

void Session::clearProgress() {
    if (filesRead > 0)
        std::fprintf(stderr, "\r%60s\r", "");
    filesRead = 0;
}

// Such a file looks like a new one, empty; whoever repairs the database should know that it may hold entries.
void Session::warnOfUnopened() {
    const TSXfilelist& list = *database.lists[0];
    for (std::size_t i = 1; i < list.files.size(); ++i)
        if (list.files[i]->valid == 1 && list.files[i]->ondisk == 0)
            std::fprintf(stderr, "txcheck: Warning: %s: Unable to open the file; it counts as empty\n",
                         list.files[i]->path.c_str());
}

void Session::analyse() {
    database.analyse();
    found = found || database.problemcount > 0;
}

void Session::run() {
    database.load(std::string(database.directory).c_str());
    clearProgress();
    warnOfUnopened();
    found = database.problemcount > 0;
    for (const SolveStep& step : options.solve)
        if (!solve(step.row, step.number))
            return;
    if (options.preen)
        preen();
    if (options.changeKey && !changeKey(*options.changeKey))
        return;
    if (options.save)
        save();
}

bool Session::solve(int row, int number) {
    const TSXproblem* problem = database.getproblem(row);
    if (problem == nullptr)
        return refuse("--solve " + std::to_string(row) + ":" + std::to_string(number) + ": the list has " +
                      std::to_string(database.problemcount) + " rows");
    if (problem->solutioncommand(number) == 0)
        return refuse("--solve " + std::to_string(row) + ":" + std::to_string(number) +
                      ": this problem has " + std::to_string(problem->solutioncount()) + " solutions");
    SolvedStep step{row, problem->solutioncommand(number), problem->solutionlabel(number),
                    problem->message.c_str(), 0};
    step.result = problem->solve(number);
    solved.push_back(step);
    if (step.result == 0) {
        failed = true;
        return false;
    }
    analyse();
    return true;
}

// A problem is taken once, so that this ends whatever the database holds.
void Session::preen() {
    std::set<std::tuple<int, int, std::string>> taken;
    for (int row = 1; row <= database.problemcount;) {
        const TSXproblem& problem = *database.getproblem(row);
        int number = problem.solutioncount();
        while (number > 0 && problem.solutionloses(number))
            --number;
        if (number == 0 || !taken.insert({problem.kind, problem.subkind, problem.name.c_str()}).second)
            ++row;
        else if (solve(row, number))
            row = 1;
    }
}

bool Session::changeKey(const ChangeKeyStep& step) {
    TSXkeyentry& entry = database.keytree.findoradd(step.key);
    if (step.n < 1 || step.n > entry.occurrences(step.type))
        return refuse("--change-key: the key '" + step.key + "' is used " +
                      std::to_string(entry.occurrences(step.type)) + " times in experiment type " +
                      std::to_string(step.type) + "; there is no occurrence " + std::to_string(step.n));
    const int result = database.changekey(entry, step.type, step.n, step.newKey.c_str());
    if (result == 1)
        analyse();
    failed = failed || result == -1;
    return result != -1;
}

void Session::save() {
    const int failuresBefore = failedWrites();
    database.saveall();
    const bool unwritten = failedWrites() != failuresBefore;
    if (unwritten)
        refuse("Some changed keys could not be written; check the disk and run txcheck again");
    saved = !unwritten && database.ismodified() == 0;
    if (!saved)
        failed = true;
}

int Session::status() const {
    if (failed)
        return statusFailed;
    if (database.problemcount > 0 || database.ismodified() == 1)
        return statusLeft;
    return found ? statusSolved : statusClean;
}
