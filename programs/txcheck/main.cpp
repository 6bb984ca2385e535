// txcheck: the checks and repairs of the tool without a window, for scripts, cron and remote machines.
#include <iostream>

#include "choice.h"
#include "explanation.h"
#include "jsonreport.h"
#include "options.h"
#include "platform/system/standardstreams.h"
#include "session.h"
#include "status.h"
#include "textreport.h"
#include "told.h"
#include "undoreport.h"

int main(int argc, char** argv) {
    openStandardStreams();
    int status = statusClean;
    const std::optional<Options> options = parseOptions(argc, argv, status);
    if (!options)
        return status;
    if (options->undoList)
        return writeUndoList(std::cout, options->json);
    const std::optional<std::string> directory = chooseDirectory(*options);
    if (!directory)
        return statusFailed;
    Session session(*options);
    if (!session.open(*directory))
        return statusFailed;
    if (options->restore)
        session.restoreFrom(*options->restore);
    else
        session.run();
    if (options->json)
        writeJson(std::cout, session, *options);
    else if (session.explained != 0)
        writeExplanation(std::cout, *session.database.getproblem(session.explained), session.explained);
    else if (!options->quiet || session.status() != statusClean || session.changedSomething())
        writeText(std::cout, session, *options);
    std::cout.flush();
    if (!std::cout) {
        tell("The report could not be written to standard output");
        return statusFailed;
    }
    return session.status();
}
