// The desktop tool from its start to its end, without a screen and with a person in it who does what the
// words of the command line say: "KIND:N" is solution N of the first problem of that kind, "save" saves.
// Prints what stands in its model at the end; what was shown goes to standard error. Status 8 when something
// was shown or could not be read, else 4 when problems or changes are left, else 1.
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/application.h"
#include "model/database.h"
#include "model/problem.h"
#include "platform/system/messagebox.h"
#include "platform/system/standardstreams.h"
#include "platform/window/testaccess.h"
#include "resources/resources.h"
#include "views/current.h"
#include "views/mainframe.h"

namespace {

int boxes = 0;

int show(const char* text, const char* title, std::uint32_t flags) {
    ++boxes;
    std::fprintf(stderr, "%s: %s\n", title, text);
    return (flags & MB_TYPEMASK) == MB_OK ? IDOK : IDNO;
}

void solve(TSXmainframe& frame, const std::string& kind, int number) {
    for (int row = 1; row <= database->problemcount; ++row)
        if (database->getproblem(row)->id().rfind(kind + ":", 0) == 0) {
            frame.selectedProblem = row;
            frame.frameCommand(
                static_cast<std::uint32_t>(database->getproblem(row)->solutioncommand(number)));
            break;
        }
}

void work(TSXmainframe& frame, const std::string& word) {
    const std::size_t colon = word.find(':');
    if (word == "save")
        frame.frameCommand(saveCommand);
    else if (colon != std::string::npos)
        solve(frame, word.substr(0, colon), std::atoi(word.c_str() + colon + 1));
    QApplication::processEvents();
}

int summary() {
    std::printf("{\"solved\": [], \"modified\": %d, \"problems\": [", database->ismodified());
    for (int row = 1; row <= database->problemcount; ++row)
        std::printf("%s\"%s\"", row > 1 ? ", " : "", database->getproblem(row)->id().c_str());
    std::printf("]}\n");
    for (const Unread& thing : database->unread)
        std::fprintf(stderr, "%s: %s\n", thing.name.c_str(), thing.reason.c_str());
    if (boxes > 0 || database->unreadcount() > 0)
        return 8;
    return database->problemcount > 0 || database->ismodified() == 1 ? 4 : 1;
}

} // namespace

int main(int argc, char** argv) {
    openStandardStreams();
    const std::vector<std::string> words(argv + 1, argv + argc);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication windowSystem(argc, argv);
    answers.messageBox = show;
    int status = 0;
    {
        TSXapp application;
        application.InitInstance();
        boxes = 0; // of an earlier run that was interrupted: no failure of this one
        QApplication::processEvents();
        for (const std::string& word : words)
            work(*mainFrame, word);
        status = summary();
        mainFrame->DestroyWindow();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return status;
}
