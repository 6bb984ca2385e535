// What each drawing operation leaves on the surface, pixel by pixel. Run at scale factors 1, 1.5 and 2.
#include <gtest/gtest.h>

#include "platform/window/bitmap.h"
#include "windowtest.h"

namespace {

class Drawing : public WindowTest {
protected:
    // The rectangle around all pixels of the colour in the left top quarter of the pane; empty if there is
    // none.
    RECT extentOf(COLORREF colour) const {
        RECT box{200, 100, 0, 0};
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 200; ++x) {
                if (pixel(x, y) == colour)
                    box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                           std::max(box.bottom, y + 1)};
            }
        }
        return box;
    }
    void expectExtent(COLORREF colour, const RECT& box) const {
        const RECT found = extentOf(colour);
        EXPECT_EQ(std::vector({found.left, found.top, found.right, found.bottom}),
                  std::vector({box.left, box.top, box.right, box.bottom}));
    }
};

TEST_F(Drawing, LinesLeaveOutTheirEndPointInEveryDirection) {
    struct {
        POINT from, to;
        RECT drawn;
    } const cases[] = {
        {{10, 10}, {20, 10}, {10, 10, 20, 11}}, {{20, 10}, {10, 10}, {11, 10, 21, 11}},
        {{10, 10}, {10, 20}, {10, 10, 11, 20}}, {{10, 20}, {10, 10}, {10, 11, 11, 21}},
        {{10, 10}, {15, 15}, {10, 10, 15, 15}}, {{10, 10}, {4, 7}, {5, 7, 11, 11}},
        {{10, 10}, {10, 10}, {200, 100, 0, 0}},
    };
    const CPen pen(red);
    for (const auto& line : cases) {
        paintPane([&](CDC& context) {
            context.SelectObject(&pen);
            context.MoveTo(line.from.x, line.from.y);
            context.LineTo(line.to.x, line.to.y);
        });
        expectExtent(red, line.drawn);
    }
    paintPane([&](CDC& context) {
        context.SelectObject(&pen);
        context.SelectStockObject(NULL_PEN); // draws nothing, but moves on
        context.MoveTo(5, 5);
        context.LineTo(30, 5);
        context.SelectStockObject(WHITE_PEN);
        context.LineTo(30, 9);
    });
    expectExtent(red, {200, 100, 0, 0});
    expectExtent(white, {30, 5, 31, 9});
}

TEST_F(Drawing, RectangleHasOutlineAndInsideAndLeavesOutRightAndBottom) {
    const CBrush inside(blue);
    paintPane([&](CDC& context) {
        context.SelectStockObject(BLACK_PEN);
        context.SelectObject(&inside);
        context.Rectangle(10, 10, 20, 16);
    });
    expectExtent(black, {10, 10, 20, 16});
    expectExtent(blue, {11, 11, 19, 15});
    paintPane([&](CDC& context) {
        context.SelectStockObject(NULL_BRUSH);
        context.Rectangle(10, 10, 20, 16);
    });
    EXPECT_EQ(pixel(12, 12), grey);
    EXPECT_EQ(pixel(19, 15), black);
}

TEST_F(Drawing, NeighboursTouchWithoutGapAndOverlap) {
    paintPane([](CDC& context) {
        for (int x = 0; x < 60; ++x)
            context.SetPixel(x, 0, x % 2 == 0 ? red : blue);
        context.FillSolidRect(0, 1, 60, 1, black);
        context.FillSolidRect(0, 2, 0, 5, white); // no width: nothing
        context.FillSolidRect(0, 2, -3, 5, white);
    });
    for (int x = 0; x < 60; ++x) {
        ASSERT_EQ(pixel(x, 0), x % 2 == 0 ? red : blue) << x;
        ASSERT_EQ(pixel(x, 1), black) << x;
    }
    expectExtent(white, {200, 100, 0, 0});
}

TEST_F(Drawing, TextIsOpaqueOnTheLastFillColourOrTransparent) {
    const CFont font(-11, 0, 400, false, "arial");
    SIZE size;
    paintPane([&](CDC& context) {
        context.SelectObject(&font);
        size = context.GetTextExtentPoint32A("Solve");
        context.FillSolidRect(50, 20, 1, 1, blue);
        context.TextOutA(50, 20, "  ");
        context.SetBkMode(TRANSPARENT);
        context.TextOutA(80, 60, "Solve");
    });
    EXPECT_GT(size.cx, 20);
    EXPECT_LT(size.cx, 35);
    EXPECT_GE(size.cy, 11);
    EXPECT_LE(size.cy, 15);
    const RECT cell = extentOf(blue);
    EXPECT_EQ(cell.left, 50);
    EXPECT_EQ(cell.top, 20);
    EXPECT_NEAR(cell.bottom - cell.top, size.cy, 1);
    EXPECT_GT(cell.right, 53);
    EXPECT_EQ(pixel(80, 60), grey);
}

TEST_F(Drawing, ExtendedTextFillsItsRectangleAndIsClippedToIt) {
    const CFont bold(-12, 0, 700, false, "arial");
    paintPane([&](CDC& context) {
        context.SelectObject(&bold);
        context.SetTextColor(red);
        context.SetBkColor(white);
        context.ExtTextOutA(22, 12, {20, 10, 60, 30}, "HHHHHHHHHHHHHHHHH");
        context.ExtTextOutA(22, 62, {20, 60, 60, 80}, "");
    });
    expectExtent(white, {20, 10, 60, 80});
    const RECT letters = extentOf(red); // the stems of hinted letters are of the pure colour
    EXPECT_GE(letters.left, 22);
    EXPECT_LE(letters.right, 60);
    EXPECT_GE(letters.top, 12);
    EXPECT_LE(letters.bottom, 26);
    EXPECT_EQ(pixel(60, 12), grey);
}

TEST_F(Drawing, AlignmentPutsXAtTheLeftRightOrMiddleOfTheText) {
    const CFont font(-12, 0, 700, false, "arial");
    struct {
        unsigned alignment;
        double share; // of the text's width that lies to the left of x
    } const cases[] = {{TA_LEFT | TA_TOP, 0}, {TA_RIGHT, 1}, {TA_CENTER, 0.5}};
    for (const auto& row : cases) {
        int width = 0;
        paintPane([&](CDC& context) {
            context.SelectObject(&font);
            context.SetBkColor(white);
            context.SetTextAlign(row.alignment);
            context.TextOutA(100, 20, "HHHH");
            width = context.GetTextExtentPoint32A("HHHH").cx;
        });
        const RECT cell = extentOf(white);
        EXPECT_NEAR(cell.left, 100 - width * row.share, 1) << row.alignment;
        EXPECT_NEAR(cell.right, 100 + width * (1 - row.share), 1) << row.alignment;
    }
}

TEST_F(Drawing, FontsDifferAsTheirDescriptionsDo) {
    CDC context;
    const auto extent = [&](const CFont& font, const char* text) {
        context.SelectObject(&font);
        return context.GetTextExtentPoint32A(text);
    };
    const CFont fixed(-14, 0, 400, false, "courier new");
    EXPECT_EQ(extent(fixed, "iiii").cx, extent(fixed, "WWWW").cx);
    const CFont plain(-11, 0, 400, false, "arial");
    const CFont bold(-11, 0, 700, false, "arial");
    EXPECT_LT(extent(plain, "iiii").cx, extent(plain, "WWWW").cx);
    EXPECT_GT(extent(bold, "nnnnnnnnnnnn").cx, extent(plain, "nnnnnnnnnnnn").cx);
    EXPECT_EQ(extent(plain, "\xC3\xA4").cx, extent(plain, "\xE4").cx); // one letter, in either encoding
    const CFont upward(-11, 900, 400, false, "arial");
    paintPane([&](CDC& target) {
        target.SelectObject(&upward);
        target.SetBkColor(blue);
        target.TextOutA(50, 90, "upward text");
    });
    const RECT line = extentOf(blue);
    EXPECT_EQ(line.left, 50);
    EXPECT_EQ(line.bottom, 90);
    EXPECT_GT(line.bottom - line.top, 3 * (line.right - line.left));
}

TEST_F(Drawing, MemoryContextSavesAndGivesBackWhatLay) {
    paintPane([](CDC& context) { context.FillSolidRect(10, 10, 20, 10, red); });
    CClientDC screen(&pane);
    CBitmap saved;
    CDC memory;
    memory.CreateCompatibleDC(screen);
    saved.CreateCompatibleBitmap(screen, 40, 20);
    memory.SelectObject(&saved);
    memory.BitBlt(0, 0, 40, 20, screen, 0, 0);
    screen.FillSolidRect(0, 0, 40, 20, blue);
    EXPECT_EQ(pixel(15, 15), blue);
    screen.BitBlt(0, 0, 40, 20, memory, 0, 0);
    expectExtent(red, {10, 10, 30, 20});
    expectExtent(blue, {200, 100, 0, 0});
}

TEST_F(Drawing, IconLeavesWhatIsTransparent) {
    paintPane([](CDC& context) { context.DrawIcon(4, 2, *LoadIconA(105)); });
    EXPECT_EQ(LoadIconA(100), nullptr);
    EXPECT_EQ(pixel(4, 2), red);
    EXPECT_EQ(pixel(5, 2), grey);
    EXPECT_EQ(pixel(6, 2), black);
    EXPECT_EQ(pixel(5, 3), black);
    EXPECT_EQ(pixel(7, 3), grey);
}

TEST_F(Drawing, ScreenContextShowsOnlyWhileItLives) {
    const auto visible = [] {
        int count = 0;
        for (const QWidget* widget : QApplication::topLevelWidgets())
            count += widget->isVisible() ? 1 : 0;
        return count;
    };
    const int before = visible();
    {
        CClientDC screen(nullptr);
        EXPECT_EQ(visible(), before);
        CBitmap saved;
        CDC memory;
        memory.CreateCompatibleDC(screen);
        saved.CreateCompatibleBitmap(screen, 50, 20);
        memory.SelectObject(&saved);
        memory.BitBlt(0, 0, 50, 20, screen, 100, 100);
        screen.FillSolidRect(100, 100, 50, 20, red);
        EXPECT_EQ(visible(), before + 1);
        screen.BitBlt(100, 100, 50, 20, memory, 0, 0);
        EXPECT_EQ(visible(), before);
    }
    EXPECT_EQ(visible(), before);
}

} // namespace
