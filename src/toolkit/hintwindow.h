// The hint of a button: one or two lines, drawn straight on the screen. It is there from construction on and
// gives the screen back when it goes, which has to be before anything draws under it.
#pragma once

#include <cstdint>

#include "platform/system/text.h"
#include "platform/window/windowdc.h"

class TSXpane;

class TSXhintwindow : public CObject {
public:
    // The top-left corner is there in client pixels of the pane, or further to the left where the
    // screen ends. The second line may be empty.
    TSXhintwindow(const TSXpane& pane, POINT corner, const char* line1, const char* line2);
    ~TSXhintwindow() override;

    // In pixels of the screen, the shadow included.
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

private:
    void measure();
    void saveScreen();
    void draw();

    Text<800> text1;
    Text<800> text2;
    CClientDC screenContext{nullptr};
    CDC saveContext;
    CBitmap savedScreen;
};
