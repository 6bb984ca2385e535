// A status bar of one part, with a line of text and a grip to size the frame with.
#pragma once

#include <string>

#include "platform/window/wnd.h"

class CStatusBarCtrl : public CWnd {
public:
    // Makes the bar in the frame's client area; SetWindowPos places it.
    bool Create(CWnd& frame);
    void SetText(const char* line); // empty at first; what the bar is too short for shows in a hint

    void onSize(int type, int width, int height) override;
    void onPaint() override;

private:
    std::string text;
};
