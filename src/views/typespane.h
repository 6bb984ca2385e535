// The pane at the bottom left of the main window: one row for each experiment type with the icon of its class
// and the counts of its files and records. It does not react to the mouse.
#pragma once

#include "toolkit/rowpane.h"

class TSXmainframe;

class TSXtypespane : public TSXrowpane {
public:
    explicit TSXtypespane(TSXmainframe& frame) : TSXrowpane("Data types", keyboardRow), owner(frame) {}

    void updateScrollRange(); // after each change of the types or the pane's size
    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;

    TSXmainframe& owner;

private:
    std::int32_t keyboardRow = 1; // what is read; the row that is marked stays the first
    void paintRow(CDC& dc, int row, const RECT& place) override;
};
