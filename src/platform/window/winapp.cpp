#include "platform/window/winapp.h"

#include <QApplication>

#include "platform/window/framewnd.h"
#include "platform/window/internal/application.h"
#include "platform/window/internal/strayinput.h"

namespace {

CWinApp* theApplication = nullptr;

} // namespace

CWinApp::CWinApp() {
    theApplication = this;
}

CWinApp::~CWinApp() {
    theApplication = nullptr;
}

CFrameWnd* AfxGetMainWnd() {
    return theApplication == nullptr ? nullptr : theApplication->m_pMainWnd;
}

void endApplicationWith(const CWnd& window) {
    if (AfxGetMainWnd() != &window)
        return;
    theApplication->m_pMainWnd = nullptr;
    QCoreApplication::exit(0);
}

int AfxWinMain(int argc, char** argv, CWinApp& (*application)()) {
    QApplication windowSystem(argc, argv);
    const HeldKeyFilter filter;
    QApplication::setQuitOnLastWindowClosed(false); // a message box may be the last window for a while
    CWinApp& app = application();
    if (app.InitInstance() == 0 || app.m_pMainWnd == nullptr)
        return 0;
    const int status = QApplication::exec();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // widgets that were about to go
    return status;
}
