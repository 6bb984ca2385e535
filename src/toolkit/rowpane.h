// A scrolling pane that is a table of rows of one height, one of which is selected: the keys that lead
// through them, and their texts for those who have them read. Rows count from 1.
#pragma once

#include "platform/window/rowsource.h"
#include "toolkit/scrollpane.h"

class TSXrowpane : public TSXscrollpane, public RowSource {
public:
    static constexpr int rowHeight = 20;

    void paneCreated() override; // a concrete pane's own calls this one first
    RECT rowPlace(int row) const override;
    // Arrows, Page, Home and End select another row and bring it into view, Return opens the selected one.
    void onKeyDown(std::uint32_t key, std::uint32_t repeat, std::uint32_t flags) override;

    virtual void selectRow(int /*row*/) {} // an existing one; the pane is repainted by the caller
    virtual void openRow() {}              // the selected one, if there is

protected:
    // The text where it is wider in the plain font, as it stands on this pane, than so many pixels, else
    // nothing.
    std::string wider(const std::string& text, int width) const;
    // As updateScrollBars; where the list has become shorter than the position, its last page shows.
    void updateRows();

private:
    void goToRow(int row);
    void showRow(int row);

    int knownRows = 0; // at the last updateRows
};
