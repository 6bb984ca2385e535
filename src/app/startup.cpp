// From the start of the process to the message loop.
#include <cstdlib>
#include <memory>
#include <string>

#include "analysis/progress.h"
#include "app/application.h"
#include "changes/finish.h"
#include "model/database.h"
#include "model/marker.h"
#include "platform/system/person.h"
#include "platform/system/startprogram.h"
#include "platform/window/msgbox.h"
#include "reporting/log.h"
#include "reporting/notify.h"
#include "resources/resources.h"
#include "settings/settings.h"
#include "toolkit/drawing.h"
#include "views/current.h"
#include "views/mainframe.h"

Text<2000> rootDirectory;
Text<2000> homeDirectory;
Text<2000> databaseDirectory;
HANDLE lockHandle = INVALID_HANDLE_VALUE;

namespace {

std::shared_ptr<Tree> heldTree; // the database's directory
std::string waiting;            // what keeps this run from changing anything; empty: nothing

// An exit from inside the constructor leaves without the destructor, and so without the start-up program: one
// that waits hears why.
[[noreturn]] void quit(const std::string& why, int status = 0) {
    tellStarter(StartNews::refused, why);
    std::exit(status);
}

[[noreturn]] void leave(const char* text, std::uint32_t icon) {
    notify(text, "Error", MB_OK | icon);
    quit(text);
}

void findRootDirectory() {
    constexpr std::size_t programDirectory = 6; // the length of the last part of the path
    std::string directory = GetCurrentDirectoryA();
    if (directory.size() > programDirectory)
        directory.resize(directory.size() - programDirectory);
    rootDirectory = directory.c_str();
}

void findDatabase() {
    DatabaseSettings settings;
    if (!readSettingsStore(settings))
        leave(notStartedText, MB_ICONEXCLAMATION);
    findRootDirectory();
    if (!readSettingsFile(settings))
        leave(noValidDatabaseText, MB_ICONHAND);
    homeDirectory = settings.homeDirectory;
    currentDatabase = settings.currentDatabase;
    databaseDirectory = settings.databaseDirectory;
}

// The model has less room for the path than the settings, and a cut path could be that of another database.
void refuseLongDirectory() {
    constexpr std::size_t capacity = decltype(TSXdatabase::directory)::capacity();
    if (databaseDirectory.view().size() < capacity)
        return;
    leave(Text<200>().format("The path of the database directory is too long: it has at most %zu bytes",
                             capacity - 1),
          MB_ICONEXCLAMATION);
}

void takeHold() {
    heldTree = std::make_shared<Tree>();
    lockHandle =
        succeeded(heldTree->open(databaseDirectory.c_str())) ? openMarker(*heldTree) : INVALID_HANDLE_VALUE;
    if (lockHandle == INVALID_HANDLE_VALUE)
        leave((lockFailureText() + lockAdvice(databaseDirectory)).c_str(), MB_ICONEXCLAMATION);
}

void warnOfConnectedDatabase() {
    if (hasConnectedDatabase(*heldTree) &&
        notify(connectedDatabaseText, "Warning", MB_OKCANCEL | MB_ICONINFORMATION) != IDOK)
        quit("It is left alone beside a connected database", -1);
}

// What a run that was interrupted has left half done must not be read as if it were whole.
void finishEarlier() {
    const Finished work = finishinterrupted(*heldTree, Wish::finish);
    std::string text;
    for (const std::string& line : work.texts) {
        logLine(line.c_str());
        text += (text.empty() ? "" : "\n") + line;
    }
    if (work.outcome == Finished::busy)
        leave(text.c_str(), MB_ICONEXCLAMATION);
    if (work.outcome == Finished::left) {
        waiting = text;
        if (notify((text + "\nInspect it all the same? Nothing is changed then").c_str(), "Warning",
                   MB_YESNO | MB_ICONEXCLAMATION) != IDYES)
            quit(text);
    } else if (!text.empty()) {
        notify(text.c_str(), "Warning", MB_OK | MB_ICONINFORMATION);
    }
}

// Who waits for the window may have given up; nothing was changed.
void tellProgress(int percent, const std::string& text) {
    if (tellStarter(StartNews::progress, std::to_string(percent) + " " + text))
        return;
    endLog();
    std::_Exit(0);
}

} // namespace

TSXapp::TSXapp() {
    setResources(programResources);
    setNotifier([](const char* text, const char* title, std::uint32_t flags) {
        return MessageBoxA(mainFrame, text, title, flags);
    });
    findDatabase();
    refuseLongDirectory();
    takeHold();
    warnOfConnectedDatabase();
    initDrawing({192, 192, 192});
    if (!startLog(1, homeDirectory))
        quit("The log could not be made");
    finishEarlier();
}

int TSXapp::InitInstance() {
    database = std::make_unique<TSXdatabase>((std::string(rootDirectory) + "\\DATA\\").c_str());
    database->tree = heldTree;
    const auto stands = [] { return holdStands(lockHandle, *heldTree, markerName); };
    database->committer = std::make_unique<Committer>(heldTree, CommitOptions{.ask = true, .holds = stands});
    database->committer->closed = waiting;
    placements = {readWindowPlacement(mainPlacement), readWindowPlacement(entryPlacement)};
    mainFrame = new TSXmainframe;
    {
        const Progress progress(*database, tellProgress);
        database->load(databaseDirectory);
    }
    mainFrame->createMainWindow();
    mainFrame->ShowWindow();
    m_pMainWnd = mainFrame;
    tellStarter(StartNews::stands);
    return 1;
}
