// A top-level window with a title and a menu bar.
#pragma once

#include "platform/window/wnd.h"

class CFrameWnd : public CWnd {
public:
    // Makes the window, hidden. The rectangle is on the screen, with the menu and without the border that the
    // desktop draws; a desktop may choose another place. With a parent it stays in front of it and goes with
    // it. The menu is that resource; all its entries are enabled at all times. Otherwise as CWnd's Create.
    bool Create(const WindowClass& windowClass, const char* title, const RECT& rectangle, CWnd* parent,
                int menuNumber);

protected:
    void PostNcDestroy() override; // deletes the frame
};
