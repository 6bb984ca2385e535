// The pane at the bottom right of the main window: one row for each visible key with the number of its
// records in each experiment type. A number that is out of order is bold and red.
#pragma once

#include "toolkit/rowpane.h"

class TSXkeyentry;
class TSXmainframe;

class TSXentriespane : public TSXrowpane {
public:
    explicit TSXentriespane(TSXmainframe& frame) : owner(frame) {}

    void updateScrollRange(); // after each change of the visible keys, the types or the pane's size
    void paintPane(CDC& dc) override;
    void mouseDown(int kind, int x, int y) override;

    std::string rowsName() const override { return "Entries"; }
    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;
    int selectedRow() const override;
    void selectRow(int row) override;
    void openRow() override; // its entry window

    TSXmainframe& owner;

private:
    void paintRow(CDC& dc, const TSXkeyentry& key, bool selected, int top, int width);
};
