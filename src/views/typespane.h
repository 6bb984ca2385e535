// The pane at the bottom left of the main window: one row for each experiment type with the icon of its class
// and the counts of its files and records. It does not react to the mouse.
#pragma once

#include "toolkit/scrollpane.h"

class TSXmainframe;

class TSXtypespane : public TSXscrollpane {
public:
    explicit TSXtypespane(TSXmainframe& frame) : owner(frame) {}

    void updateScrollRange(); // after each change of the types or the pane's size
    void paintPane(CDC& dc) override;

    TSXmainframe& owner;

private:
    void paintRow(CDC& dc, int type, int top, int width);
};
