// The menus, the dialog and the icons of the tool, as data for the window system.
#pragma once

#include "platform/window/resources.h"

enum ResourceNumber : int {
    applicationIcon = 1,
    mainMenu = 101,
    entryMenu = 102,
    sheetsIcon = 105,
    promptDialog = 10001,
};

// Commands that a menu gives and a frame takes; the two frames number theirs alike.
enum MenuCommand : unsigned {
    saveCommand = 101,
    rebuildCommand = 102,
    showAllCommand = 103,
    editCommand = 201, // the entry, or its key
    undoCommand = 202,
    exitCommand = 999,
};

// All of them, to be handed to setResources.
extern const Resources programResources;
