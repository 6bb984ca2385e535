#include "toolkit/icons.h"
#include "windowtest.h"

TEST(DrawingSet, ColoursFollowTheBaseColour) {
    static const int numbers[] = {1, 2, 3, -1, 0, 101, 4, 5};
    const struct {
        std::array<std::int32_t, 3> base;
        std::uint32_t expected[std::size(numbers)];
    } cases[] = {
        {{0, 0, 0}, {0, 0, 0, 0, 0x999999, 0, 0x00FF00, 0}},
        {{255, 255, 255}, {0xFFFFFF, 0xDBDBDB, 0xC1C1C1, 0xB2B2B2, 0xFFFFFF, 0xCCCCCC, 0x00FF00, 0}},
        {{255, 0, 0}, {0xFF0000, 0xDB0000, 0xC10000, 0xB20000, 0xFF9999, 0xFF0000, 0x00FF00, 0}},
        {{192, 192, 192},
         {0xC0C0C0, 0xA5A5A5, 0x919191, 0x868686, 0xE5E5E5, 0x999999, 0x00FF00, 0}}, // as before
    };
    for (const auto& row : cases) {
        releaseDrawing();
        EXPECT_TRUE(getBrush(1) == nullptr && getPen(1) == nullptr && getFont(1) == nullptr &&
                    getColour(1) == 0U);
        initDrawing(row.base);
        for (std::size_t i = 0; i < std::size(numbers); ++i)
            EXPECT_EQ(getColour(numbers[i]), hexColour(row.expected[i])) << "colour " << numbers[i];
        for (const int number : {1, 2, 3, 101, 4})
            EXPECT_EQ(getBrush(number)->colour, getColour(number)) << "brush " << number;
        EXPECT_TRUE(getBrush(7) == getBrush(1) && getPen(4) == getPen(1) && getFont(0) == getFont(1));
        EXPECT_TRUE(getPen(2)->colour == getColour(-1) && getPen(5)->colour == RGB(255, 0, 0));
    }
    EXPECT_EQ(getFont(7)->description, (LOGFONT{-11, 0, 400, true, "arial"}));
}

TEST(DrawingSet, IconsAreDrawnPixelByPixel) {
    const OnShow<TSXframe> frame;
    Mosaic icons(9, 34, 34);
    for (const int number : {-4, 1, 2, 3, 4, 5, 6, 7, 11, 13, 199, 200, 201, 202, 203, 204, 205, 206, 0}) {
        CClientDC dc(&*frame);
        dc.FillSolidRect(0, 0, 60, 60, hexColour(0x090909));
        number == 0 ? dc.DrawIcon(6, 16, *LoadIconA(applicationIcon)) : paintIcon(dc, 10, 20, number);
        icons.add(*frame, 5, 15);
    }
    icons.compare("icons.png");
}
