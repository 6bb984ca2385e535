#include "platform/window/winapp.h"

#include <QApplication>
#include <cstdio>
#include <cstdlib>

#include "platform/system/startprogram.h"
#include "platform/window/framewnd.h"
#include "platform/window/internal/modal.h"

namespace {

CWinApp* theApplication = nullptr;

// The window system would abort; what it says of its own parts helps nobody.
void leaveOnFatal(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*text*/) {
    constexpr int failed = 8;
    constexpr const char* why = "No window can be opened: there is no display, or it can't be reached";
    if (type != QtFatalMsg)
        return;
    std::fprintf(stderr, "%s\n", why);
    tellStarter(StartNews::failed, why);
    std::_Exit(failed);
}

} // namespace

CWinApp::CWinApp() {
    theApplication = this;
}

CWinApp::~CWinApp() {
    theApplication = nullptr;
}

void endApplicationWith(const CWnd& window) {
    if (theApplication == nullptr || theApplication->m_pMainWnd != &window)
        return;
    theApplication->m_pMainWnd = nullptr;
    QCoreApplication::exit(0);
}

void expectDisplay(bool expected) {
    qInstallMessageHandler(expected ? leaveOnFatal : nullptr);
}

int AfxWinMain(int argc, char** argv, CWinApp& (*application)()) {
    expectDisplay(true);
    QApplication windowSystem(argc, argv);
    expectDisplay(false);
    const HeldKeyFilter filter;
    QApplication::setQuitOnLastWindowClosed(false); // a message box may be the last window for a while
    CWinApp& app = application();
    if (app.InitInstance() == 0 || app.m_pMainWnd == nullptr)
        return 0;
    const int status = QApplication::exec();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // widgets that were about to go
    return status;
}
