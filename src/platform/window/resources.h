// Menus, dialogs and icons as data. The program sets its tables once, before its first window.
#pragma once

#include <cstdint>
#include <span>

#include "platform/window/colour.h"

struct IconColour {
    char letter;
    COLORREF colour;
};

// A picture of 32 by 32 pixels, one letter a pixel. A letter without a colour, and what the rows leave out,
// is transparent.
struct IconResource {
    static constexpr int size = 32;
    int number;
    std::span<const IconColour> colours;
    std::span<const char* const> rows;
};

struct MenuEntry {
    const char* menu; // its title on the menu bar; entries of one menu stand together
    const char* text;
    std::uint32_t id;
};

struct MenuResource {
    int number;
    std::span<const MenuEntry> entries;
};

enum class ControlKind { edit, button, defaultButton, label };

// Places and sizes in dialog units: a quarter of the font's average width, an eighth of its height.
struct DialogControl {
    int id; // IDOK and IDCANCEL end the dialog
    ControlKind kind;
    const char* text;
    int x, y, width, height;
};

struct DialogResource {
    int number;
    int width, height;
    std::span<const DialogControl> controls; // in tab order
};

struct Resources {
    std::span<const IconResource> icons;
    std::span<const MenuResource> menus;
    std::span<const DialogResource> dialogs;
};

// The tables have to live as long as the program.
void setResources(const Resources& resources);

// Null when there is no such resource.
const IconResource* LoadIconA(int number);
const MenuResource* findMenu(int number);
const DialogResource* findDialog(int number);
