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
#include "textform.h"
#include "told.h"
#include "undoreport.h"

namespace {

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

// Adds its line to those of all.
void runOne(const Options& options, const Chosen& chosen, Together& together) {
    Session session(options, together, chosen.label);
    if (session.open(chosen.directory)) {
        if (options.restore)
            session.restoreFrom(*options.restore);
        else
            session.run();
        if (options.json || !together.several)
            write(session, options);
    }
    const Line line{chosen.label, inShort(session), session.loaded ? session.status() : statusFailed,
                    session.loaded};
    together.lines.push_back(line);
    if (together.several && !options.json && !(options.quiet && line.status == statusClean))
        std::cout << printable(line.label) << ": " << line.text << std::endl;
}

// The statuses of all databases together.
int runAll(const Options& options, const std::vector<Chosen>& all) {
    std::vector<std::string> directories(all.size());
    std::ranges::transform(all, directories.begin(), &Chosen::directory);
    PageForm page(options.report.value_or(""), directories);
    Together together{options.several(), page, directories, {}, {}};
    int status = statusClean;
    for (const Chosen& chosen : all) {
        if (isAskedToEnd())
            break;
        endAtOnce(status);
        runOne(options, chosen, together);
        status |= together.lines.back().status;
    }
    tellOf("");
    if (!together.several)
        return together.lines.empty() ? status | statusEnded : status;
    if (const std::string failure = page.end(together.lines); !failure.empty()) {
        tell(failure);
        status |= statusFailed;
    }
    if (!options.json && !(options.quiet && status == statusClean))
        writeText(std::cout, "", {tableOf(together.lines)});
    return together.lines.size() < all.size() ? status | statusEnded : status;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    int status = statusClean;
    const std::optional<Options> options = parseOptions(argc, argv, status);
    if (!options)
        return status;
    if (options->undoList)
        return writeUndoList(options->directories.empty() ? "" : options->directories[0], options->json);
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
