// The application object and the entry point's work.
#pragma once

#include "platform/system/cobject.h"

class CFrameWnd;
class CWnd;

class CWinApp : public CObject {
public:
    CWinApp();
    ~CWinApp() override;

    // Makes the main window and stores it in m_pMainWnd. Zero ends the program without a message loop.
    virtual int InitInstance() = 0;

    CFrameWnd* m_pMainWnd = nullptr; // set back to null when that window goes, which ends the message loop
};

// For the layer itself: ends the message loop when this was the main window.
void endApplicationWith(const CWnd& window);

// Brings up the window system, then calls the function that hands out the application object, a static inside
// of it: an exit in its constructor leaves without its destructor, and at a normal end that runs last, when
// the window system is gone. Then InitInstance and the message loop. Returns the exit status.
int AfxWinMain(int argc, char** argv, CWinApp& (*application)());

// While the window system comes up: without a display the process ends with status 8 and says so.
void expectDisplay(bool expected);
