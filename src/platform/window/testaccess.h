// For tests only: the door through which all goes that asks the person, and a look at what is on show.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/window/colour.h"
#include "platform/window/drawingobjects.h"

class CDialog;
class CMenu;
class CWnd;
class QWidget;

// Answers given before anything is shown. Where one is set, nothing appears on the screen.
struct Answers {
    std::function<int(const char* text, const char* title, std::uint32_t flags)> messageBox;
    // Called when the dialog stands, after its OnInitDialog: may set and read its controls as the person
    // would. IDOK then takes the way of the OK button, anything else that of Cancel.
    std::function<int(CDialog& dialog)> dialog;
    // The id of the chosen entry, or 0 for none.
    std::function<std::uint32_t(const CMenu& menu)> popupMenu;
    std::function<void()> beep;
    // Told of each text where it would be painted. No letters appear then: pictures are the same with any
    // font.
    std::function<void(int x, int y, unsigned alignment, const char* text, const LOGFONT& font,
                       COLORREF colour)>
        text;
};
extern Answers answers;

// The colour on the window's surface in the middle of a client pixel; 0xFFFFFFFF outside of it.
COLORREF surfacePixel(const CWnd& window, int x, int y);

// The widgets that take real events: the client area (mouse, wheel) and the whole window (keys, close).
QWidget* clientWidget(const CWnd& window);
QWidget* outerWidget(const CWnd& window);
