#include "platform/window/colour.h"

#include <QGuiApplication>
#include <QPalette>

#include "platform/window/internal/canvas.h"

namespace {

QPalette::ColorRole roleOf(SystemColour colour) {
    switch (colour) {
    case COLOR_BTNSHADOW:
        return QPalette::Dark;
    case COLOR_BTNTEXT:
        return QPalette::ButtonText;
    case COLOR_BTNHIGHLIGHT:
        return QPalette::Light;
    case COLOR_3DDKSHADOW:
        return QPalette::Shadow;
    case COLOR_3DLIGHT:
        return QPalette::Midlight;
    default:
        return QPalette::Button;
    }
}

} // namespace

COLORREF GetSysColor(SystemColour colour) {
    return colourOf(QGuiApplication::palette().color(roleOf(colour)).rgb());
}
