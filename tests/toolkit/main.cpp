#include <gtest/gtest.h>

#include <QApplication>

#include "platform/system/messagebox.h"
#include "platform/window/resources.h"
#include "toolkit/drawing.h"

namespace {

constexpr IconColour colours[] = {{'x', hexColour(0x010203)}};
constexpr const char* rows[] = {"xx", ".x"};
constexpr IconResource icons[] = {{105, colours, rows}};

constexpr MenuEntry entries[] = {
    {"Menu", "none", 0}, {"Menu", "first", 1}, {"Menu", "last", 9001}, {"Menu", "beyond", 9002}};
constexpr MenuResource menus[] = {{101, entries}};

constexpr DialogControl controls[] = {{101, ControlKind::edit, "", 7, 39, 203, 16},
                                      {IDOK, ControlKind::defaultButton, "OK", 160, 65, 50, 14},
                                      {IDCANCEL, ControlKind::button, "Cancel", 160, 87, 50, 14},
                                      {102, ControlKind::label, "Static", 7, 19, 203, 8}};
constexpr DialogResource dialogs[] = {{10001, 217, 108, controls}};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    setResources({icons, menus, dialogs});
    initDrawing({192, 192, 192});
    const int status = RUN_ALL_TESTS();
    releaseDrawing();
    return status;
}
