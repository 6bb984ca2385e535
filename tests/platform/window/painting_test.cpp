// What is painted when, and what only moves: the update region, erasing, scrolling and drawing outside of a
// paint.
#include <gtest/gtest.h>

#include "windowtest.h"

namespace {

class Painting : public WindowTest {};

TEST_F(Painting, InvalidPartsArePaintedOnceAndErasedOnlyAsAsked) {
    paintPane([](CDC& context) { context.FillSolidRect(0, 0, 200, 50, red); });
    pane.paint = [](CDC&) {};
    pane.InvalidateRect(false);
    pane.UpdateWindow();
    EXPECT_EQ(taken(), Events({"paint 0 0 200 100"}));
    EXPECT_EQ(pixel(5, 5), red);
    pane.UpdateWindow(); // nothing is left to paint
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events());
    pane.InvalidateRect(true);
    pane.InvalidateRect(false);
    EXPECT_EQ(pixel(5, 5), red); // nothing happens before the paint
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"paint 0 0 200 100"}));
    EXPECT_EQ(pixel(5, 5), grey);
}

TEST_F(Painting, ScrollMovesPixelsAndPaintsOnlyWhatCameIntoView) {
    struct {
        int dx, dy;
        const char* painted;
        POINT movedTo; // of the pixel (100, 50)
        POINT freshPixel;
    } const cases[] = {
        {0, -16, "paint 0 84 200 100", {100, 34}, {0, 99}},   {0, 16, "paint 0 0 200 16", {100, 66}, {0, 15}},
        {-16, 0, "paint 184 0 200 100", {84, 50}, {199, 99}}, {16, 0, "paint 0 0 16 100", {116, 50}, {15, 0}},
        {0, -400, "paint 0 0 200 100", {-1, -1}, {100, 50}},
    };
    for (const auto& row : cases) {
        paintPane([](CDC& context) {
            context.FillSolidRect(0, 0, 200, 100, red);
            context.SetPixel(100, 50, blue);
        });
        pane.paint = [](CDC& context) {
            context.FillSolidRect(0, 0, 200, 100, white);
        }; // clipped to the strip
        pane.ScrollWindow(row.dx, row.dy);
        pane.UpdateWindow();
        EXPECT_EQ(taken(), Events({row.painted}));
        EXPECT_EQ(pixel(row.freshPixel.x, row.freshPixel.y), white) << row.painted;
        if (row.movedTo.x < 0)
            continue;
        EXPECT_EQ(pixel(row.movedTo.x, row.movedTo.y), blue) << row.painted;
        EXPECT_EQ(pixel(100, 50), red) << row.painted;
    }
}

TEST_F(Painting, WhatIsInvalidMovesWithAScroll) {
    paintPane([](CDC& context) { context.FillSolidRect(0, 0, 200, 100, red); });
    pane.ScrollWindow(0, -16);
    pane.ScrollWindow(0, -16); // the strip of the first scroll has not been painted yet
    pane.UpdateWindow();
    EXPECT_EQ(taken(), Events({"paint 0 68 200 100"}));
    pane.ScrollWindow(0, 0);
    pane.UpdateWindow();
    EXPECT_EQ(taken(), Events());
}

TEST_F(Painting, ClientContextDrawsAtOnceAndOverWhatIsInvalid) {
    paintPane([](CDC&) {});
    CClientDC context(&pane);
    context.FillSolidRect(0, 0, 10, 10, red);
    EXPECT_EQ(pixel(9, 9), red);
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events()); // no paint comes of it
    pane.SetWindowPos(10, 20, 120, 80);
    pane.UpdateWindow();
    context.FillSolidRect(0, 0, 200, 100, blue); // the surface is smaller by now
    EXPECT_EQ(pixel(119, 79), blue);
    frame->DestroyWindow();
    frame = nullptr;
    context.FillSolidRect(0, 0, 200, 100, red); // the window has gone: no harm
}

TEST_F(Painting, HiddenWindowsAreNotPaintedBeforeTheyShow) {
    Recorder<CWnd> other(events);
    Events silent;
    auto* const hidden = new RecordedFrame(silent); // deletes itself
    const CBrush brush(blue);
    ASSERT_TRUE(hidden->Create(AfxRegisterWndClass(&brush), "hidden", {0, 0, 300, 200}, nullptr, 0));
    ASSERT_TRUE(other.Create(AfxRegisterWndClass(&brush), {0, 0, 50, 40}, *hidden));
    other.UpdateWindow();
    other.SetWindowPos(0, 0, 60, 30); // a new size is told all the same
    EXPECT_EQ(taken(), Events({"create", "size 50 40", "size 60 30"}));
    hidden->ShowWindow();
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"paint 0 0 60 30"}));
    EXPECT_EQ(surfacePixel(other, 59, 29), blue);
    EXPECT_EQ(surfacePixel(other, 60, 30), 0xFFFFFFFF);
    hidden->DestroyWindow();
}

TEST_F(Painting, NewSizeIsToldOnceAtOnceAndInvalidatesAll) {
    pane.SetWindowPos(1, 2, 150, 90);
    EXPECT_EQ(taken(), Events({"size 150 90"}));
    pane.SetWindowPos(30, 40, 150, 90); // only moved
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"paint 0 0 150 90"}));
    pane.SetWindowPos(0, 0, -5, 0); // vanishes
    EXPECT_EQ(taken(), Events({"size 0 0"}));
    outerWidget(*frame)->resize(500, 400);
    const RECT client = frame->GetClientRect();
    EXPECT_EQ(client.right, 500);
    EXPECT_LT(client.bottom, 400); // the menu takes its part
    EXPECT_EQ(taken().front(), "size 500 " + std::to_string(client.bottom));
}

TEST_F(Painting, SurfaceReachesTheScreenPixelByPixel) {
    paintPane([](CDC& context) {
        for (int y = 0; y < 100; y += 2)
            context.FillSolidRect(0, y, 200, 1, y % 4 == 0 ? red : blue);
    });
    const QImage whole = outerWidget(*frame)->grab().toImage();
    const double scale = whole.devicePixelRatio();
    const QPointF corner = QPointF(clientWidget(pane)->mapTo(outerWidget(*frame), QPoint(0, 0))) * scale;
    for (int y = 0; y < 100; ++y) {
        const int line = static_cast<int>(corner.y() + 0.5) + static_cast<int>((y + 0.5) * scale);
        const QRgb found = whole.pixel(static_cast<int>(corner.x() + 20 * scale), line);
        const COLORREF expected = y % 2 == 1 ? grey : (y % 4 == 0 ? red : blue);
        ASSERT_EQ(RGB(qRed(found), qGreen(found), qBlue(found)), expected) << y;
    }
}

} // namespace
