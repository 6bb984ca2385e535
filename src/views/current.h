// What all windows of the process share: the one database, its name and the main window. The program sets
// them before the first window opens.
#pragma once

#include <memory>

#include "platform/system/text.h"

class TSXdatabase;
class TSXmainframe;

extern std::unique_ptr<TSXdatabase> database;
extern Text<2000> currentDatabase; // its name
extern TSXmainframe* mainFrame;    // owned by the window system; null when it is gone
