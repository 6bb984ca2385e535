// From the end of the message loop to that of the process. The window system is gone by then.
#include "app/application.h"
#include "model/database.h"
#include "platform/system/person.h"
#include "platform/system/startprogram.h"
#include "reporting/log.h"
#include "reporting/notify.h"
#include "settings/settings.h"
#include "toolkit/drawing.h"
#include "views/current.h"

TSXapp::~TSXapp() {
    setNotifier({});
    database.reset();
    writeWindowPlacement(mainPlacement, placements.main);
    writeWindowPlacement(entryPlacement, placements.entry);
    releaseDrawing();
    endLog();
    CloseHandle(lockHandle); // before the start-up program starts, which may start the tool again at once
    SetCurrentDirectoryA(rootDirectory);
    if (const char* program = edition().startProgram; *program != '\0')
        WinExec(program);
}
