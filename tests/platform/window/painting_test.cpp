// What is painted when, and what only moves: the update region, erasing, scrolling and drawing outside of a
// paint; and who goes with whom.
#include <QMenuBar>
#include <QPointer>

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

TEST_F(Painting, ScrollMovesWhatIsPaintedAndWhatIsNot) {
    const struct {
        int dx, dy;
        const char *once, *twice; // what is painted after one scroll and after two
    } cases[] = {{0, -16, "paint 0 84 200 100", "paint 0 68 200 100"},
                 {0, 16, "paint 0 0 200 16", "paint 0 0 200 32"},
                 {-16, 0, "paint 184 0 200 100", "paint 168 0 200 100"},
                 {16, 0, "paint 0 0 16 100", "paint 0 0 32 100"},
                 {0, -400, "paint 0 0 200 100", "paint 0 0 200 100"}};
    for (const auto& row : cases)
        for (const int times : {1, 2}) {
            paintPane([](CDC& context) {
                context.FillSolidRect(0, 0, 200, 100, red);
                context.SetPixel(100, 50, blue);
            });
            pane.paint = [](CDC& context) { context.FillSolidRect(0, 0, 200, 100, white); }; // clipped
            for (int i = 0; i < times; ++i)
                pane.ScrollWindow(row.dx, row.dy);
            pane.UpdateWindow();
            EXPECT_EQ(taken(), Events({times == 1 ? row.once : row.twice}));
            const bool gone = row.dy == -400;
            EXPECT_EQ(pixel(100 + times * row.dx, gone ? 50 : 50 + times * row.dy), gone ? white : blue);
            EXPECT_EQ(pixel(100, 50), gone ? white : red);
        }
    pane.ScrollWindow(0, 0);
    pane.UpdateWindow();
    EXPECT_EQ(taken(), Events());
}

TEST_F(Painting, ClientContextDrawsAtOnceAndReachesTheScreen) {
    CClientDC context(&pane);
    for (int y = 0; y < 100; y += 2)
        context.FillSolidRect(0, y, 200, 1, y % 4 == 0 ? red : blue);
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events()); // no paint comes of it
    const QImage whole = outerWidget(*frame)->grab().toImage();
    const double scale = whole.devicePixelRatio();
    const QPointF corner = QPointF(clientWidget(pane)->mapTo(outerWidget(*frame), QPoint(0, 0))) * scale;
    for (int y = 0; y < 100; ++y) {
        const int line = static_cast<int>(corner.y() + 0.5) + static_cast<int>((y + 0.5) * scale);
        const QRgb found = whole.pixel(static_cast<int>(corner.x() + 20 * scale), line);
        const COLORREF expected = y % 2 == 1 ? grey : (y % 4 == 0 ? red : blue);
        ASSERT_EQ(RGB(qRed(found), qGreen(found), qBlue(found)), expected) << y;
    }
    pane.SetWindowPos(10, 20, 120, 80);
    pane.UpdateWindow();
    context.FillSolidRect(0, 0, 200, 100, blue); // the surface is smaller by now
    EXPECT_EQ(pixel(119, 79), blue);
    EXPECT_EQ(pixel(120, 80), 0xFFFFFFFF);
    frame->DestroyWindow();
    frame = nullptr;
    context.FillSolidRect(0, 0, 200, 100, red); // the window has gone: no harm
}

TEST_F(Painting, NewSizeIsToldOnceAtOnceAndInvalidatesAll) {
    pane.SetWindowPos(1, 2, 150, 90);
    EXPECT_EQ(taken(), Events({"size 150 90"}));
    pane.SetWindowPos(30, 40, 150, 90); // only moved
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"paint 0 0 150 90"}));
    outerWidget(*frame)->hide();
    pane.SetWindowPos(0, 0, 60, -5); // told also while it is not on show, and not painted
    pane.InvalidateRect(true);
    pane.UpdateWindow();
    EXPECT_EQ(taken(), Events({"size 60 0"}));
    outerWidget(*frame)->resize(500, 400);
    outerWidget(*frame)->show();
    const RECT client = frame->GetClientRect();
    EXPECT_EQ(client.right, 500);
    const QRect menu = outerWidget(*frame)->findChild<QMenuBar*>()->geometry();
    EXPECT_EQ(menu, QRect(0, 0, 500, 400 - client.bottom));
    EXPECT_GT(menu.height(), 9);
    EXPECT_EQ(taken().front(), "size 500 " + std::to_string(client.bottom));
}

TEST_F(Painting, WindowsThatBelongToAFrameGoBeforeItAndPanesOutliveTheirWindows) {
    openFrame(frame);
    outerWidget(*openFrame(frame))->close();
    EXPECT_EQ(taken().back(), "frame deleted");
    {
        Recorder<CWnd> shortLived(events); // takes its window along
        ASSERT_TRUE(shortLived.Create(AfxRegisterWndClass(&greyBrush), {0, 0, 50, 50}, *frame));
        EXPECT_FALSE(shortLived.Create(AfxRegisterWndClass(&greyBrush), {0, 0, 50, 50}, *frame));
        taken();
    }
    const QPointer<QWidget> window = outerWidget(*frame);
    frame->DestroyWindow();
    frame = nullptr;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
    EXPECT_EQ(taken(), Events({"frame deleted", "frame deleted"}));
    pane.InvalidateRect(true); // without a window nothing of this has an effect
    pane.SetWindowPos(0, 0, 10, 10);
    pane.ScrollWindow(0, 16);
    EXPECT_EQ(pane.GetClientRect().right, 0);
    EXPECT_FALSE(pane.Create(AfxRegisterWndClass(&greyBrush), {0, 0, 9, 9}, pane));
}

} // namespace
