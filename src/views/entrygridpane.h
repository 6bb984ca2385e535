// The grid of an entry window: a row for each experiment type, in it a cell for each record of the type that
// uses the key, with the file and the number of the record.
#pragma once

#include "toolkit/rowpane.h"

class TSXentryframe;

class TSXentrygridpane : public TSXrowpane {
public:
    explicit TSXentrygridpane(TSXentryframe& frame);

    void setGridRange(); // 100 steps each way, or as many as the key needs

    void paneCreated() override;
    void mouseDown(int kind, int x, int y) override;
    void afterVerticalScroll(int newPosition, int oldPosition) override; // moves the names too

    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;
    int selectedRow() const override { return TSXrowpane::selectedRow() + 1; } // types count from 0
    void selectRow(int row) override;
    void openRow() override; // gives the selected record another key
    void onKeyDown(std::uint32_t key, std::uint32_t repeat, std::uint32_t flags) override;

    TSXentryframe& owner;

private:
    void paintRow(CDC& dc, int row, const RECT& place) override;
    std::string cellText(int type, int n) const;
    void paintOccurrence(CDC& dc, int type, int n, const RECT& cell);
};

// The names of the experiment types beside the grid. The grid scrolls it and sets its vPos, while its own bar
// stays at 0; it does not react to the mouse.
class TSXentrytypespane : public TSXrowpane {
public:
    explicit TSXentrytypespane(TSXentryframe& frame);

    int rowCount() const override;
    std::string rowText(int row) const override;
    std::string cutText(int row, int x) const override;

    TSXentryframe& owner;

private:
    void paintRow(CDC& dc, int row, const RECT& place) override;

    std::int32_t none = 0; // no row is selected
};
