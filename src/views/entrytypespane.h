// The names of the experiment types beside the grid of an entry window. The grid scrolls it; it does not
// react to the mouse.
#pragma once

#include "toolkit/scrollpane.h"

class TSXentryframe;

class TSXentrytypespane : public TSXscrollpane {
public:
    explicit TSXentrytypespane(TSXentryframe& frame);

    void paintPane(CDC& dc) override;

    TSXentryframe& owner;
};
