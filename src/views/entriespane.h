// The pane at the bottom right of the main window: one row for each visible key with the number of its
// records in each experiment type. A number that is out of order is bold and red.
#pragma once

#include "toolkit/rowpane.h"

class TSXmainframe;

class TSXentriespane : public TSXrowpane {
public:
    explicit TSXentriespane(TSXmainframe& frame);

    void updateScrollRange(); // after each change of the visible keys, the types or the pane's size
    void mouseDown(int kind, int x, int y) override;

    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;
    void openRow() override; // its entry window

    TSXmainframe& owner;

private:
    void paintRow(CDC& dc, int row, const RECT& place) override;
    static void paintCount(CDC& dc, const RECT& cell, int count, bool marked);
};
