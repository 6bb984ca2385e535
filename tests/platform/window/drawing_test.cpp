// What each drawing operation leaves on the surface. Run at scale factors 1, 1.5 and 2.
#include <random>

#include "platform/window/dc.h"
#include "windowtest.h"

namespace {

constexpr int width = 200;
constexpr int height = 100;

// The pane as it should look.
struct Model {
    void set(int x, int y, COLORREF colour) {
        if (x >= 0 && x < width && y >= 0 && y < height)
            pixels[static_cast<std::size_t>(y * width + x)] = colour;
    }
    void fill(int x, int y, int w, int h, COLORREF colour) {
        for (int i = 0; i < w * h && w > 0; ++i)
            set(x + i % w, y + i / w, colour);
    }
    std::vector<COLORREF> pixels = std::vector<COLORREF>(width * height, grey);
};

class Drawing : public WindowTest {
protected:
    // The rectangle around all pixels of the colour, as left, top, right, bottom; all 0 if there is none.
    std::vector<int> extentOf(COLORREF colour) const {
        std::vector<int> box = {width, height, 0, 0};
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (pixel(x, y) == colour)
                    box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1),
                           std::max(box[3], y + 1)};
        return box[2] == 0 ? std::vector(4, 0) : box;
    }
    int any(int from, int to) { return std::uniform_int_distribution(from, to)(random); }

    // One operation on both.
    void drawAnything(CDC& dc, Model& model) {
        const COLORREF colours[] = {red, blue, white, black};
        const COLORREF colour = colours[any(0, 3)];
        const int x = any(-20, width), y = any(-20, height), w = any(-2, 40), h = any(-2, 40);
        const CPen pen(colour);
        const CBrush brush(colours[any(0, 3)]);
        dc.SelectObject(&pen);
        dc.SelectObject(&brush);
        switch (any(0, 5)) {
        case 0:
            dc.SetPixel(x, y, colour);
            return model.set(x, y, colour);
        case 1:
            dc.FillSolidRect(x, y, w, h, colour);
            return model.fill(x, y, w, h, colour);
        case 2: { // in one of eight directions, without its end point
            const int dx = any(-1, 1), dy = any(-1, 1), length = any(0, 40);
            dc.MoveTo(x, y);
            dc.LineTo(x + dx * length, y + dy * length);
            for (int i = 0; i < length && (dx != 0 || dy != 0); ++i)
                model.set(x + dx * i, y + dy * i, colour);
            return;
        }
        case 3: {
            constexpr StockObject stock[] = {NULL_BRUSH, WHITE_BRUSH, BLACK_BRUSH};
            const int kind = any(0, 3); // three is the brush that is selected
            const COLORREF filling = kind == 3 ? brush.colour : kind == 1 ? RGB(255, 255, 255) : black;
            if (kind < 3)
                dc.SelectStockObject(stock[kind]);
            dc.Rectangle(x, y, x + w, y + h);
            if (w > 0 && h > 0)
                for (int i = 0; i < w * h; ++i) {
                    const bool edge = i % w == 0 || i % w == w - 1 || i < w || i >= w * (h - 1);
                    if (edge || kind > 0)
                        model.set(x + i % w, y + i / w, edge ? colour : filling);
                }
            return;
        }
        case 4: // without a pen nothing but the place where the next line starts
            dc.SelectStockObject(NULL_PEN);
            dc.MoveTo(0, 0);
            dc.LineTo(x, y);
            dc.SelectObject(&pen);
            dc.LineTo(x, y + 3);
            return model.fill(x, y, 1, 3, colour);
        default: { // saved, drawn over and given back
            CDC memory;
            CBitmap saved;
            memory.CreateCompatibleDC(dc);
            saved.CreateCompatibleBitmap(dc, 40, 20);
            memory.SelectObject(&saved);
            const int left = any(0, 79) * 2, top = any(0, 39) * 2; // whole device pixels at each scale
            memory.BitBlt(0, 0, 40, 20, dc, left, top);
            dc.FillSolidRect(left, top, 40, 20, colour);
            dc.BitBlt(left, top, 40, 20, memory, 0, 0);
        }
        }
    }
    std::mt19937 random{20241};
};

TEST_F(Drawing, EveryPixelIsAsASmallModelHasIt) {
    for (int round = 0; round < 30; ++round) {
        Model model;
        paintPane([&](CDC& dc) {
            for (int i = 0; i < 40; ++i)
                drawAnything(dc, model);
        });
        for (int i = 0; i < width * height; ++i)
            ASSERT_EQ(pixel(i % width, i / width), model.pixels[static_cast<std::size_t>(i)])
                << i % width << ", " << i / width << " in round " << round;
    }
}

TEST_F(Drawing, TextHasItsPlaceItsBackgroundAndItsFont) {
    const CFont plain({-11, 0, 400, false, "arial"}), bold({-11, 0, 700, false, "arial"});
    const CFont fixed({-14, 0, 400, false, "courier new"}), upward({-11, 900, 400, false, "arial"});
    SIZE size{};
    const auto show = [&](const CFont& font, unsigned alignment, BackgroundMode mode, const char* text) {
        paintPane([&](CDC& dc) {
            dc.SelectObject(&font);
            dc.SetTextAlign(alignment);
            dc.SetBkMode(mode);
            dc.FillSolidRect(150, 0, 1, 1, white);
            dc.FillSolidRect(150, 0, 1, 1, blue); // and is the background from here on
            dc.SetPixel(150, 0, grey);
            dc.TextOutA(100, 90, text);
            size = dc.GetTextExtentPoint32A(text);
        });
        return extentOf(blue);
    };
    const struct {
        unsigned alignment;
        double share; // of the text's width that lies to the left of x
    } alignments[] = {{TA_LEFT | TA_TOP, 0}, {TA_RIGHT, 1}, {TA_CENTER, 0.5}};
    for (const auto& row : alignments) {
        const std::vector<int> cell = show(bold, row.alignment, OPAQUE, "HHHH");
        EXPECT_NEAR(cell[0], 100 - size.cx * row.share, 1);
        EXPECT_NEAR(cell[2], 100 + size.cx * (1 - row.share), 1);
        EXPECT_EQ(cell[1], 90);
    }
    EXPECT_EQ(show(bold, 0, TRANSPARENT, "HHHH"), std::vector(4, 0));
    EXPECT_NE(extentOf(black), std::vector(4, 0));
    const std::vector<int> line = show(upward, 0, OPAQUE, "upward");
    EXPECT_EQ(std::vector({line[0], line[3]}), std::vector({100, 90}));
    EXPECT_GT(line[3] - line[1], 2 * (line[2] - line[0]));
    const auto widthOf = [&](const CFont& font, const char* text) {
        return show(font, 0, OPAQUE, text), size.cx;
    };
    EXPECT_EQ(widthOf(fixed, "iiii"), widthOf(fixed, "WWWW"));
    EXPECT_NEAR(widthOf(plain, "Solve"), 28, 2);
    EXPECT_GT(widthOf(bold, "nnnnnnnnnnnn"), widthOf(plain, "nnnnnnnnnnnn"));
    EXPECT_EQ(widthOf(plain, "\xC3\xA4"), widthOf(plain, "\xE4")); // one letter, in either encoding
    paintPane([&](CDC& dc) {
        dc.SelectObject(&bold);
        dc.SetTextColor(red);
        dc.SetBkColor(white);
        dc.ExtTextOutA(15, 12, {20, 10, 60, 17}, "HHHHHHHHHHHHHHHHH");
        dc.ExtTextOutA(22, 62, {20, 60, 60, 80}, "");
    });
    EXPECT_EQ(extentOf(white), std::vector({20, 10, 60, 80}));
    const std::vector<int> letters = extentOf(red); // the stems of hinted letters are of the pure colour
    EXPECT_TRUE(letters[0] >= 20 && letters[1] >= 12 && letters[2] <= 60 && letters[2] > 50 &&
                letters[3] == 17);
}

} // namespace
