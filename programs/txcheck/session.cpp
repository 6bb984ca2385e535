#include "session.h"

#include <algorithm>

#include "explanation.h"
#include "htmlreport.h"
#include "model/marker.h"
#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/filesearch.h"
#include "platform/system/messagebox.h"
#include "progress.h"
#include "reporting/log.h"
#include "reporting/report.h"
#include "status.h"
#include "textfile.h"
#include "told.h"

namespace {

// A text of several lines, as a message box shows it.
std::string inOneLine(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
        const std::size_t end = std::min(text.find_first_not_of('\n', at), text.size());
        text.replace(at, end - at, end - at == 1 ? ". " : " ");
    }
    return text;
}

} // namespace

Session::Session(const Options& given) : database(""), steps(database, given, known), options(given) {
    setReport([this](const char* text, const char* title, std::uint32_t flags) {
        return answer(text, title, flags);
    });
}

Session::~Session() {
    endLog();
    setReport({});
    if (marker != INVALID_HANDLE_VALUE)
        CloseHandle(marker);
}

bool Session::refuse(const std::string& text) {
    tell(text);
    steps.failed = true;
    return false;
}

int Session::answer(const char* text, const char* title, std::uint32_t flags) {
    const std::string message = std::string(title) + ": " + text;
    if ((flags & MB_TYPEMASK) == MB_YESNO) {
        tell(message + (options.yes ? " Yes" : " No (--yes would say Yes)"));
        return options.yes ? IDYES : IDNO;
    }
    tell(message);
    steps.failed = true;
    return IDOK;
}

bool Session::open(const std::string& directory) {
    if (directory.empty())
        return refuse("The path of the database directory is empty");
    if (directory.size() >= decltype(database.directory)::capacity())
        return refuse("The path of the database directory is too long: it has at most " +
                      std::to_string(decltype(database.directory)::capacity() - 1) + " bytes");
    if (const std::string failure = options.known ? known.read(*options.known) : ""; !failure.empty())
        return refuse(failure);
    if (!readable(directory))
        return false;
    if (!isDatabase(directory.c_str()))
        return refuse(noDatabaseText(directory.c_str()));
    if (!options.noLock && !hold(directory))
        return false;
    if (hasConnectedDatabase(directory.c_str()))
        tell(std::string("Warning: ") + connectedDatabaseText + " It goes on");
    if (options.log && !startLog(1, options.log->c_str()))
        return false;
    database.directory = directory.c_str();
    return true;
}

bool Session::hold(const std::string& directory) {
    marker = openMarker(directory.c_str());
    if (marker != INVALID_HANDLE_VALUE)
        return true;
    const std::string advice = lockAdvice(directory.c_str());
    return refuse(directory + "/open_db.txf: " + inOneLine(lockFailureText() + advice));
}

// What lies below a directory that can't be read is unknown as a whole; no marker is made there.
bool Session::readable(const std::string& directory) {
    WIN32_FIND_DATAA match;
    std::vector<std::string> passedOver;
    FindHandle search = FindFirstFileA((directory + "/*").c_str(), match, passedOver);
    FindClose(search);
    const std::uint32_t error = search == nullptr ? GetLastError() : ERROR_FILE_NOT_FOUND;
    if (error == ERROR_FILE_NOT_FOUND)
        return true;
    return refuse(directory + ": Unable to read the database directory (Error code " + std::to_string(error) +
                  ": " + errorText(error) + "). Give one that is there and that you may read");
}

// What an analysis can't read may come and go with each; every thing is told once.
void Session::tellUnread() {
    for (const Unread& thing : database.unread)
        if (toldUnread.insert(thing.name + '\n' + thing.reason).second)
            tell((thing.weight == Unread::told ? "Passed over: " : "Could not read: ") + thing.name + ": " +
                 thing.reason);
}

void Session::run() {
    if (options.progress)
        database.fileread = [progress = Progress(database.directory.c_str())](
                                const TSXdatafile& file) mutable { progress.show(file); };
    database.load(std::string(database.directory).c_str());
    endProgress();
    tellUnread();
    steps.run([this] { return save(); });
    tellUnread();
    for (const std::string& id : known.goneFrom(database))
        tell("Warning: " + *options.known + ": there is no such problem (any more): " + id);
    if (options.explain && (explained = rowToExplain(database, *options.explain)) == 0)
        refuse("--explain " + *options.explain + ": there is no such problem");
    if (options.writeKnown)
        write(*options.writeKnown, knownText(database));
    if (options.all)
        database.showallkeys();
    if (options.report)
        write(*options.report, htmlReport(*this, options));
}

void Session::write(const std::string& path, const std::string& text) {
    if (const std::string failure = writeTextFile(path, text, database.directory); !failure.empty())
        refuse(failure);
}

bool Session::save() {
    const int failuresBefore = failedWrites();
    database.saveall();
    const bool unwritten = failedWrites() != failuresBefore;
    if (unwritten)
        refuse("Some changed keys could not be written; check the disk and run txcheck again");
    saved = !unwritten && database.ismodified() == 0;
    if (!saved)
        steps.failed = true;
    return true;
}

int Session::status() const {
    if (steps.failed || database.unreadcount() > 0)
        return statusFailed;
    if (known.unknownIn(database) > 0 || database.ismodified() == 1)
        return statusLeft;
    return steps.found ? statusSolved : statusClean;
}
