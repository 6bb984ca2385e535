// A status bar of one part, without text: it serves as a grip to size the frame with.
#pragma once

#include "platform/window/wnd.h"

class CStatusBarCtrl : public CWnd {
public:
    // Makes the bar in the frame's client area; SetWindowPos places it.
    bool Create(CWnd& frame);

    void onSize(int type, int width, int height) override;
};
