// A child window of a frame: its messages as plain operations to override, but for those of the keys, which
// reach the frame too. A pane is made by its frame with Create and the background of getBrush(baseBrush),
// laid out with placeAt, and deleted by the frame.
#pragma once

#include "platform/window/wnd.h"

class CDC;

// The button and the keys held, as one number, in the mouse operations of a pane.
enum MouseKind : int {
    leftPress = 1, // also the release of the left button, and a move
    leftDouble = 2,
    moveWithShift = 2,
    leftWithControl = 5,
    leftWithShift = 6, // with both keys, a press arrives as 5 and then as 6
    rightPress = 11,   // also the release of the right button
    rightWithShift = 13,
};

class TSXpane : public CWnd {
public:
    // In client pixels of the parent; the pane comes to lie on top of its sisters.
    void placeAt(int x, int y, int width, int height) { SetWindowPos(x, y, width, height); }

    virtual void paneCreated() {}
    virtual void paneSized(int /*type*/, int /*width*/, int /*height*/) {} // SizeType, new client size
    virtual void paintPane(CDC& /*dc*/) {} // what is invalid of the pane; the context clips to it

    // Places are client pixels, also outside of the pane while a button is held. A double click is press,
    // release, double, release.
    virtual void mouseDown(int /*kind*/, int /*x*/, int /*y*/) {}
    virtual void mouseUp(int /*kind*/, int /*x*/, int /*y*/) {}
    virtual void mouseMove(int /*kind*/, int /*x*/, int /*y*/) {}

    // ScrollCode, and the position of the thumb.
    virtual void verticalScroll(int /*code*/, int /*position*/) {}
    virtual void horizontalScroll(int /*code*/, int /*position*/) {}

private:
    void onCreate() override { paneCreated(); }
    void onSize(int type, int width, int height) override { paneSized(type, width, height); }
    void onPaint() override;
    void onMouse(MouseAction action, unsigned flags, POINT place) override;
    void onScroll(ScrollBarKind bar, int code, int position) override;
};
