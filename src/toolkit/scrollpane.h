// A pane with both scroll bars always on show, which counts in steps of some pixels. The concrete pane says
// how far its content reaches and draws it moved by position times step; the class keeps bars, positions and
// pixels in line.
#pragma once

#include <cstdint>

#include "toolkit/pane.h"

class TSXscrollpane : public TSXpane {
public:
    void paneCreated() override; // shows the bars; a concrete pane's own calls this one first
    void paneSized(int type, int width, int height) override;
    void verticalScroll(int code, int position) override;
    void horizontalScroll(int code, int position) override;

    // To be called after each change of hRange, vRange or the client size. The position never changes here:
    // where it lies beyond the content, the bar's range is widened until the person scrolls back.
    void updateScrollBars();

    // The pixels have moved and what came into view is painted. Called also when nothing moved.
    virtual void afterHorizontalScroll(int /*newPosition*/, int /*oldPosition*/) {}
    virtual void afterVerticalScroll(int /*newPosition*/, int /*oldPosition*/) {}

    // First step in view.
    std::int32_t hPos = 0;
    std::int32_t vPos = 0;
    // Pixels of a step, above 0.
    std::int32_t hStep = 16;
    std::int32_t vStep = 16;
    // Highest step, as the concrete pane wants it.
    std::int32_t hRange = 10;
    std::int32_t vRange = 10;

private:
    void updateScrollBar(ScrollBarKind bar, int range, int page);
    void scroll(ScrollBarKind bar, int code, int position);
};
