// The names of the experiment types beside the grid of an entry window. The grid scrolls it and sets its
// vPos, while its own bar stays at 0; it does not react to the mouse.
#pragma once

#include "toolkit/rowpane.h"

class TSXentryframe;

class TSXentrytypespane : public TSXrowpane {
public:
    explicit TSXentrytypespane(TSXentryframe& frame);

    void paintPane(CDC& dc) override;

    std::string rowsName() const override { return "Data types"; }
    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;
    int selectedRow() const override { return 0; }

    TSXentryframe& owner;
};
