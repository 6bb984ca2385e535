// What all windows of the process share: the one database, its name and the main window. The program sets
// them before the first window opens.
#pragma once

#include <memory>
#include <string>

#include "platform/system/text.h"

class TSXdatabase;
class TSXmainframe;

extern std::unique_ptr<TSXdatabase> database;
extern Text<2000> currentDatabase; // its name
extern TSXmainframe* mainFrame;    // owned by the window system; null when it is gone

// Where the windows stood when they were closed last, as CFrameWnd tells it; empty: as they come.
struct WindowPlacements {
    std::string main;
    std::string entry;
};
extern WindowPlacements placements;
