// The one application object, from the start of the process to its end, and where it found its database.
#pragma once

#include "platform/system/hold.h"
#include "platform/system/text.h"
#include "platform/window/winapp.h"

class TSXapp : public CWinApp {
public:
    // Finds the current database, takes hold of it and starts the log. A failure is shown and ends the
    // process from here, without the destructor.
    TSXapp();
    // Gives up the model, the log and the hold, in this order, and starts the start-up program.
    ~TSXapp() override;

    // Reads the database and opens the main window on it. Always 1.
    int InitInstance() override;
};

// Set by the constructor.
extern Text<2000> rootDirectory; // the working directory at start less its last 6 bytes
extern Text<2000> homeDirectory;
extern Text<2000> databaseDirectory;
extern HANDLE lockHandle; // the open marker file

// Under which names the settings store keeps where the windows stood.
constexpr const char* mainPlacement = "Main Window";
constexpr const char* entryPlacement = "Entry Window";
