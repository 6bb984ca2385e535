#include "toolkit/scrollpane.h"

#include "windowtest.h"

namespace {

// Each step of the content has a colour of its own, across and down.
struct ChequeredPane : TSXscrollpane {
    void paintPane(CDC& dc) override {
        painted.push_back(dc.GetClipBox());
        for (int i = 0; i < 144; ++i)
            dc.FillSolidRect((i % 12 - hPos) * 16, (i / 12 - vPos) * 16, 16, 16, RGB(i % 12, i / 12, 0));
    }
    void afterVerticalScroll(int now, int before) override { note("v", now, before); }
    void afterHorizontalScroll(int now, int before) override { note("h", now, before); }
    void note(const char* bar, int now, int before) {
        moves += bar + std::to_string(before) + ">" + std::to_string(now);
    }
    void scroll(int code, int position) {
        moves.clear();
        verticalScroll(code, position);
        horizontalScroll(code, position);
    }
    // For a client area of so many pixels both ways.
    void setUp(int range, int extent) {
        vRange = hRange = range;
        placeAt(0, 0, 300, 300);
        const RECT client = GetClientRect();
        placeAt(0, 0, 300 + extent - client.right, 300 + extent - client.bottom);
        UpdateWindow();
        painted.clear();
    }
    std::vector<RECT> painted;
    std::string moves;
};

struct ScrollPane : testing::Test {
    OnShow<PaneFrame<ChequeredPane>> frame;
    ChequeredPane& pane = frame->pane;
};

} // namespace

TEST_F(ScrollPane, SetsBarsFromRangeSizeAndPosition) {
    const struct {
        int position, range, extent, page, maximum;
    } cases[] = {{0, 0, 160, 1, 0},    {3, 0, 160, 1, 3},    {95, 100, 160, 9, 103}, {0, 100, 160, 9, 100},
                 {0, 100, 15, 0, 100}, {0, 100, 16, 0, 100}, {0, 100, 32, 1, 100},   {2, 5, 160, 6, 7}};
    for (const auto& row : cases) {
        pane.setUp(300, 32);
        pane.scroll(SB_THUMBTRACK, row.position);
        pane.setUp(row.range, row.extent);
        for (const ScrollBarKind bar : {SB_VERT, SB_HORZ}) {
            SCROLLINFO info;
            ASSERT_TRUE(pane.GetScrollInfo(bar, info));
            EXPECT_EQ(std::tuple(info.nPage, info.nMax, info.nPos),
                      std::tuple(row.page, row.maximum, row.position))
                << row.range << " in " << row.extent;
        }
        EXPECT_EQ(pane.vPos, row.position);
    }
}

TEST_F(ScrollPane, FollowsTheBarsWithinTheirLimits) {
    const struct {
        int from, code, thumb;
        std::string moves;
    } cases[] = {
        {4, SB_LINEDOWN, 0, "4>5"},     {4, SB_LINEUP, 0, "4>3"},       {0, SB_LINEUP, 0, "0>0"},
        {16, SB_LINEDOWN, 0, "16>16"},  {4, SB_PAGEDOWN, 0, "4>9"},     {1, SB_PAGEUP, 0, "1>0"},
        {4, SB_THUMBTRACK, 11, "4>11"}, {4, SB_THUMBTRACK, 99, "4>16"}, {4, SB_THUMBTRACK, -1999, "4>0"},
        {4, SB_THUMBTRACK, -2000, ""},  {4, SB_THUMBPOSITION, 9, ""},   {4, SB_BOTTOM, 0, ""},
    };
    pane.setUp(20, 96); // a page of 5, so that the last position is 16
    for (const auto& row : cases) {
        pane.scroll(SB_THUMBTRACK, row.from);
        pane.scroll(row.code, row.thumb);
        EXPECT_EQ(pane.moves, row.moves.empty() ? "" : "v" + row.moves + "h" + row.moves)
            << "code " << row.code;
    }
}

TEST_F(ScrollPane, MovesThePixelsAndPaintsTheStripThatCameIntoView) {
    pane.setUp(20, 96);
    pane.InvalidateRect(false); // waits, and is to be painted where it still stands
    pane.scroll(SB_LINEDOWN, 0);
    ASSERT_EQ(pane.painted.size(), 3U);
    EXPECT_EQ(pane.painted[1].top, 80);
    EXPECT_EQ(pane.painted[2].left, 80);
    for (int i = 0; i < 36; ++i)
        EXPECT_EQ(surfacePixel(pane, i % 6 * 16 + 8, i / 6 * 16 + 8), RGB(i % 6 + 1, i / 6 + 1, 0));
}
