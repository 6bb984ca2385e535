#include "onshow.h"

TEST(Drawing, ColoursFollowTheBaseColour) {
    const int numbers[] = {1, 2, 3, -1, 0, 101, 4, 5};
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
        const struct {
            const CBrush* brush;
            int colour;
        } brushes[] = {
            {getBrush(1), 1}, {getBrush(2), 2}, {getBrush(3), 3}, {getBrush(101), 101}, {getBrush(4), 4}};
        for (const auto& each : brushes)
            EXPECT_EQ(each.brush->colour, getColour(each.colour));
        EXPECT_EQ(getPen(2)->colour, getColour(-1));
        EXPECT_TRUE(getBrush(7) == getBrush(1) && getPen(4) == getPen(1) && getFont(0) == getFont(1));
        EXPECT_EQ(getFont(2)->description.weight, 700);
    }
}

// Each picture: how many pixels it covers, and one of them where parts overlap or the shape ends.
TEST(Drawing, IconsAreDrawnPixelByPixel) {
    constexpr std::uint32_t paper = 0x090909;
    const struct {
        int number, covered, x, y;
        std::uint32_t colour;
    } cases[] = {
        {-4, 31, 9, 6, 0xA08080},    {1, 69, 10, 5, 0x5C5CFF},     {2, 19, 6, 3, 0x00A000},
        {3, 25, 6, 6, 0xC0C0C0},     {4, 34, 5, 3, 0x00FF00},      {5, 55, 3, 6, 0xC046C0},
        {6, 55, 13, 11, 0x8C8C8C},   {11, 56, 1, 3, 0xFF5050},     {199, 225, 3, 12, 0x808080},
        {201, 225, 12, 9, 0x646464}, {202, 225, 12, 12, 0x4646FF}, {203, 225, 9, 12, 0x00FFFF},
        {204, 225, 9, 10, 0x808080}, {205, 225, 11, 4, 0x505050},  {13, 289, 7, 5, 0xFFFFFF},
        {7, 0, 0, 0, paper},         {200, 0, 0, 0, paper},        {206, 0, 0, 0, paper},
    };
    const OnShow<TSXframe> frame;
    for (const auto& row : cases) {
        CClientDC dc(&*frame);
        dc.FillSolidRect(0, 0, 60, 60, hexColour(paper));
        paintIcon(dc, 10, 20, row.number);
        int covered = 0;
        for (int i = 0; i < 60 * 60; ++i)
            covered += surfacePixel(*frame, i % 60, i / 60) != hexColour(paper);
        EXPECT_EQ(covered, row.covered) << "icon " << row.number;
        EXPECT_EQ(surfacePixel(*frame, 10 + row.x, 20 + row.y), hexColour(row.colour))
            << "icon " << row.number;
    }
}
