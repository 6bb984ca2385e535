// The grid of an entry window: a row for each experiment type, in it a cell for each record of the type that
// uses the key, with the file and the number of the record.
#pragma once

#include "toolkit/scrollpane.h"

class TSXentryframe;

class TSXentrygridpane : public TSXscrollpane {
public:
    explicit TSXentrygridpane(TSXentryframe& frame) : owner(frame) {}

    void setGridRange(); // 100 steps each way, whatever the key holds

    void paneCreated() override;
    void paintPane(CDC& dc) override;
    void mouseDown(int kind, int x, int y) override;
    void afterVerticalScroll(int newPosition, int oldPosition) override; // moves the names too

    TSXentryframe& owner;

private:
    void paintRow(CDC& dc, int type, int top, int width);
    void paintOccurrence(CDC& dc, int type, int n, const RECT& cell);
};
