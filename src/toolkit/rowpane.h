// A scrolling pane that is a table of rows of one height, one of which is selected: the keys that lead
// through them, and their texts for those who have them read. Rows count from 1.
#pragma once

#include "platform/window/rowsource.h"
#include "toolkit/scrollpane.h"

class TSXrowpane : public TSXscrollpane, public RowSource {
public:
    static constexpr int rowHeight = 20;

    RECT rowPlace(int row) const override;
    // Arrows, Page, Home and End select another row and bring it into view, Return opens the selected one.
    void onKeyDown(std::uint32_t key, std::uint32_t repeat, std::uint32_t flags) override;

    virtual void selectRow(int row) = 0; // an existing one; the pane is repainted by the caller
    virtual void openRow() {}            // the selected one, if there is

private:
    void goToRow(int row);
    void showRow(int row);
};
