// A scrolling pane that is a table of rows of one height, one of which is selected: it paints those in view,
// text in clipped cells and plain colour for the rest, and has the keys that lead through them, and their
// texts for those who have them read. Rows count from 1.
#pragma once

#include <memory>

#include "platform/window/dc.h"
#include "platform/window/rowsource.h"
#include "toolkit/drawing.h"
#include "toolkit/scrollpane.h"

class TSXrowpane : public TSXscrollpane, public RowSource {
public:
    static constexpr int rowHeight = 20;

    // The name is what the rows are; the selected one stands where the frame keeps it.
    TSXrowpane(const char* name, std::int32_t& selected) : name_(name), selected_(selected) {}

    void paneCreated() override; // a concrete pane's own calls this one first
    void paintPane(CDC& dc) override;
    std::string rowsName() const override { return name_; }
    int selectedRow() const override { return selected_; }
    RECT rowPlace(int row) const override;
    // Arrows, Page, Home and End select another row and bring it into view, Return opens the selected one.
    void onKeyDown(std::uint32_t key, std::uint32_t repeat, std::uint32_t flags) override;

    virtual void selectRow(int row) { selected_ = row; } // an existing one; the caller repaints the pane
    virtual void openRow() {}                            // the selected one, if there is

protected:
    // With the plain font, text from the left, black and opaque, as the row before has left it.
    virtual void paintRow(CDC& dc, int row, const RECT& place) = 0;
    static COLORREF rowColour(bool selected) { return getColour(selected ? accentColour : baseColour); }
    // Fills the cell with the background colour and writes the text at x, as the context is set.
    static void paintCell(CDC& dc, int x, const RECT& cell, const char* text);
    // Fills the row to the right of its last cell, which ends at left, up to its right end.
    static void fillRow(CDC& dc, int left, const RECT& place, COLORREF colour);

    int rowAt(int y) const { return (y + vStep * vPos) / rowHeight + 1; } // may be beyond the last
    bool isRow(int row) const { return row >= 1 && row <= rowCount(); }
    // The text where it is wider in the plain font, as it stands on this pane, than so many pixels, else
    // nothing.
    std::string wider(const std::string& text, int width) const;
    // Sets the ranges for content of that size in pixels. Where the list has become shorter than the
    // position, its last page shows.
    void setRanges(int width, int height);

private:
    void goToRow(int row);
    void showRow(int row);

    const char* name_;
    std::int32_t& selected_;
    int knownRows_ = 0; // at the last setRanges
};

// Makes a pane and its window; the frame lays it out afterwards.
template <class Pane, class Frame> std::unique_ptr<Pane> makePane(Frame& owner) {
    auto pane = std::make_unique<Pane>(owner);
    pane->Create(AfxRegisterWndClass(getBrush(baseBrush)), RECT{20, 20, 100, 100}, owner);
    return pane;
}
