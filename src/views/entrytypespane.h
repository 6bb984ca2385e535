// The names of the experiment types beside the grid of an entry window. The grid scrolls it; it does not
// react to the mouse.
#pragma once

#include "toolkit/rowpane.h"

class TSXentryframe;

class TSXentrytypespane : public TSXrowpane {
public:
    explicit TSXentrytypespane(TSXentryframe& frame);

    void paintPane(CDC& dc) override;

    RECT rowPlace(int row) const override; // beside the grid's row
    std::string rowsName() const override { return "Data types"; }
    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;
    int selectedRow() const override { return 0; }

    TSXentryframe& owner;
};
