#include "platform/window/colour.h"

#include <QGuiApplication>
#include <QPalette>

#include "platform/window/internal/canvas.h"

COLORREF GetSysColor(SystemColour colour) {
    constexpr QPalette::ColorRole roles[] = {
        QPalette::Button, QPalette::Dark,  QPalette::NoRole, QPalette::ButtonText,
        QPalette::NoRole, QPalette::Light, QPalette::Shadow, QPalette::Midlight}; // from COLOR_BTNFACE on
    return colourOf(QGuiApplication::palette().color(roles[colour - COLOR_BTNFACE]).rgb());
}
