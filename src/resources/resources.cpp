#include "resources/resources.h"

#include "platform/system/messagebox.h"
#include "resources/icons.h"

namespace {

constexpr MenuEntry mainEntries[] = {
    {"File", "Show all database entries", showAllCommand},
    {"File", "Rebuild database", rebuildCommand},
    {"File", "Save changes to disk", saveCommand},
    {"File", "Exit", exitCommand},
    {"Edit", "Database entry...", editCommand},
    {"Edit", "Undo", undoCommand},
};

constexpr MenuEntry entryEntries[] = {
    {"File", "Exit", exitCommand},
    {"Edit", "Change key...", editCommand},
};

constexpr MenuResource menus[] = {{mainMenu, mainEntries}, {entryMenu, entryEntries}};

// The texts of the title and the label are given when the dialog is shown.
constexpr DialogControl promptControls[] = {
    {101, ControlKind::edit, "", 7, 39, 203, 16},
    {IDOK, ControlKind::defaultButton, "OK", 160, 65, 50, 14},
    {IDCANCEL, ControlKind::button, "Cancel", 160, 87, 50, 14},
    {102, ControlKind::label, "Static", 7, 19, 203, 8},
};

constexpr DialogResource dialogs[] = {{promptDialog, 217, 108, promptControls}};

} // namespace

const Resources programResources = {iconTable, menus, dialogs};
