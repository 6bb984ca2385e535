// What a device context has selected, and where it draws.
#pragma once

#include <QRegion>
#include <QWidget>
#include <functional>
#include <memory>

#include "platform/window/dc.h"
#include "platform/window/internal/canvas.h"

struct TextFace;

struct DrawingState {
    std::shared_ptr<Canvas> canvas; // null: nothing to draw on
    double scale = 1;               // of the canvas that a memory context will get
    QRegion clip;                   // device pixels
    QRect clipBox;                  // the rectangle around it, in logical pixels
    std::function<void(const QRect& device)>
        drawn;                        // told of each place drawn on, where somebody has to show it
    std::unique_ptr<QWidget> overlay; // of a context of the screen

    COLORREF penColour = RGB(0, 0, 0);
    bool hasPen = true;
    COLORREF brushColour = RGB(255, 255, 255);
    bool hasBrush = true;
    LOGFONT font;
    const TextFace* face = nullptr; // of the font at the canvas's scale; null until it is needed
    COLORREF textColour = RGB(0, 0, 0);
    COLORREF backgroundColour = RGB(255, 255, 255);
    BackgroundMode backgroundMode = OPAQUE;
    unsigned alignment = TA_LEFT;
    POINT position; // where the next line starts

    void fill(const QRect& logical, COLORREF colour);
    void text(int x, int y, const char* bytes, const QRegion& textClip);
    bool outOfSight(const QRect& logical) const { return !clipBox.intersects(logical); }
    SIZE extent(const char* bytes); // of one line in the font, in logical pixels, rounded up
    const TextFace& currentFace();
};
