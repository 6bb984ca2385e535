// txstart: the start-up program, which chooses the database and starts its inspection.
#include <QApplication>
#include <QIcon>
#include <cstdio>

#include "choices.h"
#include "options.h"
#include "platform/system/standardstreams.h"
#include "platform/window/winapp.h"
#include "reporting/printable.h"
#include "startwindow.h"

namespace {

std::string add(const std::string& name, const std::string& directory, bool doubtful) {
    const std::string doubt = doubtful ? "" : doubtOf(directory);
    return doubt.empty() ? addDatabase(currentHome(), name, directory)
                         : doubt + ". --yes adds it all the same";
}

// The reason of the first step that fails, which ends the work; empty on success.
std::string carryOut(const Options& options) {
    std::string reason;
    if (options.home)
        reason = chooseHome(*options.home);
    if (reason.empty() && !options.add.empty())
        reason = add(options.add[0], options.add[1], options.yes);
    if (reason.empty() && options.database)
        reason = chooseDatabase(currentHome(), *options.database);
    if (reason.empty() && options.inspect)
        reason = inspectCurrent();
    return reason;
}

int showWindow(int argc, char** argv) {
    expectDisplay(true);
    QApplication application(argc, argv);
    expectDisplay(false);
    QApplication::setDesktopFileName(QStringLiteral("org.txinspect.TxInspect"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("txinspect")));
    StartWindow window;
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    int status = statusDone;
    const std::optional<Options> options = parseOptions(argc, argv, status);
    if (!options)
        return status;
    if (options->nothingAsked())
        return showWindow(argc, argv);
    const std::string reason = carryOut(*options);
    if (reason.empty())
        return statusDone;
    std::fprintf(stderr, "txstart: %s\n", printable(reason).c_str());
    return statusFailed;
}
