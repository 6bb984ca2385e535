// The desktop tool from its start to its end, without a screen and with a person in it who saves what the
// first solution that renames duplicates has changed. Prints what stands in its model at the end; what was
// shown goes to standard error. Status 8 when something was shown or could not be read, else 4 when problems
// or changes are left, else 1.
#include <QApplication>
#include <cstdio>

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

void work(TSXmainframe& frame) {
    for (int row = 1; row <= database->problemcount; ++row)
        if (database->getproblem(row)->kind == duplicatekeys) {
            frame.selectedProblem = row;
            frame.frameCommand(renameduplicatescommand);
            break;
        }
    frame.frameCommand(saveCommand);
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
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication windowSystem(argc, argv);
    answers.messageBox = show;
    int status = 0;
    {
        TSXapp application;
        application.InitInstance();
        QApplication::processEvents();
        work(*mainFrame);
        status = summary();
        mainFrame->DestroyWindow();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return status;
}
