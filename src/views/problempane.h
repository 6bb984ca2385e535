// The pane across the top of the main window: one row for each problem, with a "Solve" button and the pop-up
// menu of the problem's solutions that it opens. The choice reaches the main window as a command.
#pragma once

#include <cstdint>

#include "toolkit/rowpane.h"

class TSXmainframe;

class TSXproblempane : public TSXrowpane {
public:
    explicit TSXproblempane(TSXmainframe& frame);

    void updateScrollRange(); // after each change of the list or the pane's size
    void paintPane(CDC& dc) override;
    void mouseDown(int kind, int x, int y) override;

    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;
    void selectRow(int row) override;
    void openRow() override; // the menu of its solutions

    TSXmainframe& owner;

private:
    void paintRow(CDC& dc, int row, const RECT& place) override;
    void placeButtons(CDC& dc, int width);
    void openMenu(int row);

    std::int32_t solveX = 0; // left edge of all buttons, worked out by each paint
};
