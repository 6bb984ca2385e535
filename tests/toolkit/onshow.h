// A frame on show, of the kind that a test wants, with a pane in it.
#pragma once

#include <QTest>
#include <gtest/gtest.h>

#include "platform/window/testaccess.h"
#include "platform/window/windowdc.h"
#include "toolkit/drawing.h"
#include "toolkit/frame.h"
#include "toolkit/pane.h"

// The frame deletes itself, at the latest when the test ends.
template <class Frame> struct OnShow {
    template <class... Values> explicit OnShow(Values&&... values) : frame(new Frame(values...)) {
        frame->Create(AfxRegisterWndClass(getBrush(1)), "Test", {20, 20, 420, 320}, nullptr, 0);
        frame->ShowWindow();
        frame->UpdateWindow();
    }
    ~OnShow() {
        if (!gone)
            frame->DestroyWindow();
    }
    Frame* operator->() const { return frame; }
    Frame& operator*() const { return *frame; }

    Frame* const frame;
    bool gone = false;
};

// Makes its pane.
template <class Pane> struct PaneFrame : TSXframe {
    void frameCreated() override { pane.Create(AfxRegisterWndClass(getBrush(1)), {20, 20, 100, 100}, *this); }
    Pane pane;
};
