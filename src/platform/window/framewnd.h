// A top-level window with a title and a menu bar.
#pragma once

#include <cstdint>
#include <string>

#include "platform/window/wnd.h"

class CFrameWnd : public CWnd {
public:
    // Makes the window, hidden. The rectangle is on the screen, with the menu and without the border that the
    // desktop draws; a desktop may choose another place. With a parent it stays in front of it and goes with
    // it. All entries of its menu are enabled at all times. Otherwise as CWnd's Create.
    bool Create(const WindowClass& windowClass, const char* title, const RECT& rectangle, CWnd* parent);

    // Another text for an entry of the menu; the key that chooses it is that of its first letter.
    void SetMenuText(std::uint32_t id, const std::string& text);

    // Where the window stands, on which screen, how large, and whether it is maximized, as bytes to be kept;
    // and back, before the window is shown. Bytes that don't hold a place change nothing, a place on a screen
    // that has gone or shrunk is brought onto one that is there.
    std::string GetWindowPlacement() const;
    void SetWindowPlacement(const std::string& placement);

protected:
    void PostNcDestroy() override; // deletes the frame
};
