// The two device contexts of a window.
#pragma once

#include "platform/window/dc.h"

class CWnd;

// For the time of one paint, inside onPaint: takes over the window's update region, erases the parts of it
// that were invalidated with erase with the class brush, and clips all drawing to it. The region is valid
// from here on.
class CPaintDC : public CDC {
public:
    explicit CPaintDC(CWnd& window);
};

// Draws at once on the client area, or on the whole screen when there is no window. What is drawn on the
// screen lies over all windows, takes no input and goes when the context does; reading the screen gives only
// what was drawn.
class CClientDC : public CDC {
public:
    explicit CClientDC(const CWnd* window);
    ~CClientDC() override;
};
