#include "resources/resources.h"

#include "platform/system/messagebox.h"

namespace {

// The icons, one letter a pixel.
// A database under a magnifying glass.
constexpr IconColour applicationColours[] = {
    {'N', RGB(20, 40, 90)},    {'L', RGB(150, 185, 235)}, {'M', RGB(96, 140, 210)}, {'D', RGB(60, 98, 170)},
    {'W', RGB(200, 220, 250)}, {'T', RGB(190, 212, 246)}, {'K', RGB(40, 40, 40)},   {'S', RGB(170, 170, 170)},
    {'G', RGB(236, 244, 250)}, {'H', RGB(255, 255, 255)}, {'B', RGB(150, 90, 40)},  {'V', RGB(0, 150, 0)},
};
// clang-format off
constexpr const char* applicationRows[] = {
    "",
    "",
    ".........NNNNNN",
    "....NNNNNTTTTTTNNNNN",
    "...NTTTTTTTTTTTTTTTTN",
    "..NTTTTTTTTTTTTTTTTTTN",
    "..NTTTTTTTTTTTTTTTTTTN",
    "..NNTTTTTTTTTTTTTTTTNN",
    "..NLNNNNNTTTTTTNNNNNDN",
    "..NLLLLMMNNNNNNDDDDDDN",
    "..NLLLLMMMMMMMMDDDDDDN",
    "..NLLLLMMMMMMMMDDDDDDN",
    "..NLLLLMMMMMMMMDDDDDDN",
    "..NLLLLMMMMMMMMDDDKKKKKK",
    "..NNLLLMMMMMMMMDKKSSSSSSKK",
    "..NWNNNNNMMMMMMKKSHHHHGGSKK",
    "..NLWWWLLNNNNNNKSHHHHGGGVSK",
    "..NLLLLMMLLLLLKSHHHHGGGVVGSK",
    "..NLLLLMMMMMMMKSHHHGGGVVGGSK",
    "..NLLLLMMMMMMMKSHVGGGVVGGGSK",
    "..NLLLLMMMMMMMKSHVVGVVGGGGSK",
    "..NNNNLMMMMMMMKSGGVVVGGGGGSK",
    "..NWWWNNNNNNNNKSGGGVGGGGGGSK",
    "..NLLLWLLLLLLLLKSGGGGGGGGSK",
    "..NLLLLMMMMMMMMKKSGGGGGGSKKK",
    "..NLLLLMMMMMMMMDKKSSSSSSKKBBK",
    "...NLLLMMMMMMMMDDDKKKKKK.KBBBK",
    "....NNNNNMMMMMMNNNNN......KBBBK",
    ".........NNNNNN............KBBBK",
    "............................KBBB",
    ".............................KBK",
    "..............................K",
};

// Three white sheets, stacked, with a shadow: small enough for a row of a table.
constexpr IconColour sheetsColours[] = {
    {'W', RGB(255, 255, 255)}, {'G', RGB(128, 128, 128)}, {'K', RGB(0, 0, 0)}};
constexpr const char* sheetsRows[] = {
    "....GGGGGGGGGGGGGGG...",
    "....GWWWWWWWWWWWWWK...",
    "..GGGGGGGGGGGGGGGWK...",
    "..GWWWWWWWWWWWWWKWK...",
    "GGGGGGGGGGGGGGGWKWK...",
    "GWWWWWWWWWWWWWKWKWK...",
    "GWWWWWWWWWWWWWKWKWK...",
    "GWWKKWKWWWKKWWKWKWK...",
    "GWWWWWWWWWWWWWKWKWK...",
    "GWWKKWWKWKWKWWKWKWKGGG",
    "GWWWWWWWWWWWWWKWKKKGG.",
    "GWWKKKKWKKWKWWKWKGGG..",
    "GWWWWWWWWWWWWWKKKGG...",
    "GWWWWWWWWWWWWWKGGG....",
    "GKKKKKKKKKKKKKKGG.....",
    "...GGGGGGGGGGGGG......",
};
// clang-format on

constexpr IconResource icons[] = {
    {applicationIcon, applicationColours, applicationRows},
    {sheetsIcon, sheetsColours, sheetsRows},
};

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

const Resources programResources = {icons, menus, dialogs};
