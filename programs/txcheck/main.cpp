// txcheck: the checks and repairs of the tool without a window, for scripts, cron and remote machines.
#include <algorithm>
#include <iostream>

#include "choice.h"
#include "contents.h"
#include "documentform.h"
#include "ending.h"
#include "options.h"
#include "outcome.h"
#include "pageform.h"
#include "platform/system/standardstreams.h"
#include "reporting/printable.h"
#include "session.h"
#include "status.h"
#include "textform.h"
#include "told.h"
#include "undoreport.h"

namespace {

// A database as it is told in a line where there are several.
struct Line {
    std::string label, text;
    int status;
};

void write(const Session& session, const Options& options) {
    const bool explained = session.explained != 0 || session.explainedUnread != nullptr;
    if (options.explain && !explained)
        return; // which has been told
    if (options.json)
        writeDocument(std::cout,
                      explained ? explanationOf(session) : contentsOf(session, options, Form::document),
                      options.several());
    else if (explained || !options.quiet || session.status() != statusClean || session.changedSomething())
        writeText(std::cout, std::string("Database Check- ") + session.database.directory.c_str(),
                  explained ? explanationOf(session) : contentsOf(session, options, Form::text));
}

int runOne(const Options& options, const Chosen& chosen, Together& together, std::vector<Line>& lines) {
    Session session(options, together, chosen.label);
    if (session.open(chosen.directory)) {
        if (options.restore)
            session.restoreFrom(*options.restore);
        else
            session.run();
        if (options.json || !together.several)
            write(session, options);
    }
    lines.push_back({chosen.label, inShort(session), session.loaded ? session.status() : statusFailed});
    const Line& line = lines.back();
    if (together.several && !options.json && !(options.quiet && line.status == statusClean))
        std::cout << printable(line.label) << ": " << line.text << std::endl;
    return line.status;
}

void writeTable(const std::vector<Line>& lines) {
    Section all{"", "all", "All databases", Section::table, {}};
    all.next = [&lines, n = std::size_t{0}](Row& row) mutable {
        if (n == lines.size())
            return false;
        row.clear();
        row.number("", "Status", lines[n].status, 6).text("", "Database", lines[n].label, 30);
        row.text("", "Result", lines[n].text);
        return ++n != 0;
    };
    writeText(std::cout, "", {all});
}

// The statuses of all databases together.
int runAll(const Options& options, const std::vector<Chosen>& all) {
    std::vector<std::string> directories(all.size());
    std::ranges::transform(all, directories.begin(), &Chosen::directory);
    PageForm page(options.report.value_or(""), directories);
    Together together{options.several(), "", page};
    std::vector<Line> lines;
    int status = statusClean;
    for (const Chosen& chosen : all) {
        if (isAskedToEnd())
            break;
        endAtOnce(status);
        status |= runOne(options, chosen, together, lines);
    }
    tellOf("");
    if (const std::string failure = together.several ? page.end() : ""; !failure.empty()) {
        tell(failure);
        status |= statusFailed;
    }
    if (together.several && !options.json && !(options.quiet && status == statusClean))
        writeTable(lines);
    return lines.size() < all.size() ? status | statusEnded : status;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    int status = statusClean;
    const std::optional<Options> options = parseOptions(argc, argv, status);
    if (!options)
        return status;
    if (options->undoList)
        return writeUndoList(std::cout, options->directories.empty() ? "" : options->directories[0],
                             options->json);
    const std::optional<std::vector<Chosen>> all = chooseDatabases(*options);
    if (!all)
        return statusFailed;
    status = runAll(*options, *all);
    std::cout.flush();
    if (std::cout)
        return status;
    tell("The report could not be written to standard output");
    return status | statusFailed;
}
