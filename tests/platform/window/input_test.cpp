// Real events of mouse, keys, wheel, scroll bars and timers, and the operations that they become.
#include <gtest/gtest.h>

#include <QScrollBar>
#include <QWheelEvent>

#include "platform/window/scrollrange.h"
#include "windowtest.h"

namespace {

class Input : public WindowTest {
protected:
    QWidget* target() const { return clientWidget(pane); }

    void turnWheel(int deltaX, int deltaY) {
        const QPointF place(5, 5);
        QWheelEvent event(place, target()->mapToGlobal(place), {}, {deltaX, deltaY}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(target(), &event);
    }
    QScrollBar& bar(Qt::Orientation orientation) const {
        for (auto* const found : outerWidget(pane)->findChildren<QScrollBar*>()) {
            if (found->orientation() == orientation)
                return *found;
        }
        throw std::runtime_error("no such bar");
    }
};

TEST_F(Input, MouseArrivesWithPlaceAndModifiers) {
    QTest::mousePress(target(), Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier, {3, 4});
    QTest::mouseRelease(target(), Qt::LeftButton, Qt::NoModifier, {5, 6});
    EXPECT_EQ(taken(), Events({"left 12 3 4", "left up 0 5 6", "capture over"}));
    QTest::mouseClick(target(), Qt::LeftButton, Qt::NoModifier, {7, 8});
    QTest::mouseDClick(target(), Qt::LeftButton, Qt::NoModifier, {7, 8});
    QTest::mouseRelease(target(), Qt::LeftButton, Qt::NoModifier, {7, 8});
    EXPECT_EQ(taken(),
              Events({"left 0 7 8", "left up 0 7 8", "capture over", "double 0 7 8", "left up 0 7 8"}));
    QTest::mouseClick(target(), Qt::RightButton, Qt::ShiftModifier, {9, 9});
    EXPECT_EQ(taken(), Events({"right 4 9 9", "right up 4 9 9"}));
    QTest::mouseClick(target(), Qt::MiddleButton, Qt::NoModifier, {9, 9}); // nobody's, not the frame's either
    EXPECT_EQ(taken(), Events());
    QMouseEvent move(QEvent::MouseMove, QPointF(11.9, 12), target()->mapToGlobal(QPointF(11.9, 12)),
                     Qt::NoButton, Qt::NoButton, Qt::ShiftModifier);
    QApplication::sendEvent(target(), &move);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(target(), &leave);
    EXPECT_EQ(taken(), Events({"move 4 11 12", "leave"}));
}

TEST_F(Input, CaptureEndsOnceForWhateverReason) {
    QTest::mousePress(target(), Qt::LeftButton, Qt::NoModifier, {3, 4});
    pane.ReleaseCapture();
    EXPECT_EQ(taken(), Events({"left 0 3 4", "capture over"}));
    pane.ReleaseCapture(); // not captured any more
    QTest::mouseRelease(target(), Qt::LeftButton, Qt::NoModifier, {-3, 400});
    EXPECT_EQ(taken(), Events({"left up 0 -3 400"}));
    QTest::mousePress(target(), Qt::LeftButton, Qt::NoModifier, {3, 4});
    taken();
    outerWidget(*frame)->hide();
    EXPECT_EQ(taken(), Events({"capture over"}));
    frame->ShowWindow();
    pane.SetCapture();
    frame->SetCapture();
    frame->DestroyWindow();
    frame = nullptr;
    EXPECT_EQ(taken().front(), "capture over"); // the pane's, when the frame took it
    EXPECT_EQ(pane.host(), nullptr);
}

TEST_F(Input, KeysReachTheFrameWithThePlatformsCodes) {
    QTest::keyClick(outerWidget(*frame), Qt::Key_A);
    QTest::keyClick(outerWidget(*frame), Qt::Key_F5);
    QTest::keyClick(outerWidget(*frame), Qt::Key_Left);
    QTest::keyClick(outerWidget(*frame), Qt::Key_Return);
    EXPECT_EQ(taken(),
              Events({"key 65 1 0", "char 97 1", "key 116 1 0", "key 37 1 0", "key 13 1 0", "char 13 1"}));
}

TEST_F(Input, WheelAndTouchpadScrollByLinesThreeANotch) {
    turnWheel(0, -120); // no bar, no scrolling
    EXPECT_EQ(taken(), Events());
    pane.ShowScrollBar(SB_VERT);
    pane.ShowScrollBar(SB_HORZ);
    turnWheel(0, -120); // a bar with nothing to scroll
    pane.SetScrollInfo(SB_VERT, {100, 10, 5});
    pane.SetScrollInfo(SB_HORZ, {100, 10, 5});
    taken();
    turnWheel(0, -120);
    EXPECT_EQ(taken(), Events({"vertical 1 0", "vertical 1 0", "vertical 1 0"}));
    for (int i = 0; i < 4; ++i) // small steps add up; the way back starts anew
        turnWheel(0, 15);
    turnWheel(0, -15);
    turnWheel(0, -26);
    EXPECT_EQ(taken(), Events({"vertical 0 0", "vertical 1 0"}));
    turnWheel(120, 0);
    EXPECT_EQ(taken(), Events({"horizontal 0 0", "horizontal 0 0", "horizontal 0 0"}));
}

TEST_F(Input, ScrollBarTellsItsCodesAndStaysWhereTheWindowPutsIt) {
    SCROLLINFO info;
    EXPECT_FALSE(pane.GetScrollInfo(SB_VERT, info));
    pane.ShowScrollBar(SB_VERT);
    EXPECT_TRUE(pane.GetScrollInfo(SB_VERT, info));
    EXPECT_EQ(taken().front().substr(0, 5), "size "); // the client area is narrower now
    EXPECT_FALSE(bar(Qt::Vertical).isEnabled());
    EXPECT_TRUE(bar(Qt::Vertical).isVisible());
    pane.SetScrollInfo(SB_VERT, {40000, 10, 7});
    QScrollBar& vertical = bar(Qt::Vertical);
    struct {
        QAbstractSlider::SliderAction action;
        const char* told;
    } const actions[] = {
        {QAbstractSlider::SliderSingleStepAdd, "vertical 1 0"},
        {QAbstractSlider::SliderSingleStepSub, "vertical 0 0"},
        {QAbstractSlider::SliderPageStepAdd, "vertical 3 0"},
        {QAbstractSlider::SliderPageStepSub, "vertical 2 0"},
    };
    for (const auto& row : actions) {
        vertical.triggerAction(row.action);
        EXPECT_EQ(taken(), Events({row.told}));
        EXPECT_EQ(vertical.value(), 7); // this window ignored it
    }
    vertical.setSliderDown(true);
    vertical.setSliderPosition(20);
    vertical.setSliderPosition(32768);
    EXPECT_EQ(taken(), Events({"vertical 5 20", "vertical 5 -32768"}));
    vertical.setSliderDown(false);
    EXPECT_EQ(taken(), Events({"vertical 4 7"}));
    pane.SetScrollPos(SB_VERT, 50000);
    EXPECT_EQ(pane.GetScrollPos(SB_VERT), 39991);
    EXPECT_EQ(vertical.value(), 39991);
}

TEST_F(Input, TimersTickUntilKilledAndNotWithoutAWindow) {
    pane.SetTimer(1235, 1);
    pane.SetTimer(1236, 1);
    pane.KillTimer(1236);
    QTest::qWait(30);
    EXPECT_EQ(taken(), Events({"timer 1235"})); // killed by itself after the first
    pane.SetTimer(1, 1);
    frame->DestroyWindow();
    frame = nullptr;
    QTest::qWait(20);
    for (const std::string& line : taken())
        EXPECT_EQ(line.find("timer"), std::string::npos);
}

TEST(ScrollRange, LimitsPageAndPosition) {
    struct {
        SCROLLINFO set;
        int page, position, limit;
    } const cases[] = {
        {{5, 3, 0}, 3, 0, 3}, // the last page ends with the last value
        {{5, 3, 9}, 3, 3, 3},      {{5, 3, -2}, 3, 0, 3},
        {{5, 0, 9}, 0, 5, 5},                             // no page: up to the maximum itself
        {{5, 1, 9}, 1, 5, 5},      {{5, 99, 2}, 6, 0, 0}, // a page of everything leaves nothing to scroll
        {{103, 9, 95}, 9, 95, 95}, {{0, 1, 3}, 1, 0, 0},
        {{-7, -1, 3}, 0, 0, 0},
    };
    for (const auto& row : cases) {
        ScrollRange range;
        range.set(row.set);
        EXPECT_EQ(range.info().nPage, row.page)
            << row.set.nMax << ' ' << row.set.nPage << ' ' << row.set.nPos;
        EXPECT_EQ(range.info().nPos, row.position)
            << row.set.nMax << ' ' << row.set.nPage << ' ' << row.set.nPos;
        EXPECT_EQ(range.limit(), row.limit);
    }
}

} // namespace
