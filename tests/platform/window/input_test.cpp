// Real events of mouse, keys, wheel and scroll bars, and the operations that they become; what asks the
// person, with real keys.
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include "platform/window/internal/conversion.h"
#include "platform/window/menu.h"
#include "platform/window/msgbox.h"
#include "windowtest.h"

namespace {

class Input : public WindowTest {
protected:
    QWidget* target() const { return clientWidget(pane); }
    void turnWheel(int deltaX, int deltaY) {
        QWheelEvent event({5, 5}, target()->mapToGlobal(QPointF(5, 5)), {}, {deltaX, deltaY}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(target(), &event);
    }
    // Takes the step once the next modal window or menu stands.
    static void whenOpen(std::function<void(QWidget&)> step) {
        QTimer::singleShot(0, qApp, [step = std::move(step)] {
            QWidget* const menu = QApplication::activePopupWidget();
            QWidget* const open = menu != nullptr ? menu : QApplication::activeModalWidget();
            open != nullptr ? step(*open) : whenOpen(step);
        });
    }
};

TEST(Encoding, BytesComeBackAsTheyWereInEitherEncoding) {
    const struct {
        const char* bytes;
        TextEncoding encoding;
        const char16_t* text;
    } cases[] = {
        {"K\xC3\xA4se \xE2\x82\xAC", TextEncoding::utf8, u"K\u00E4se \u20AC"},
        {"\xF0\x9F\xA7\xAA", TextEncoding::utf8, u"\U0001F9EA"},
        {"cut \xC3", TextEncoding::windows1252, u"cut \u00C3"}, // not all of it is UTF-8
        {"\x80\x81\x9F", TextEncoding::windows1252, u"\u20AC\u0081\u0178"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(encodingOf(row.bytes), row.encoding) << row.bytes;
        EXPECT_EQ(unicodeOf(row.bytes).toStdU16String(), row.text) << row.bytes;
        EXPECT_EQ(bytesOf(unicodeOf(row.bytes), row.encoding).toStdString(), row.bytes);
    }
    EXPECT_EQ(bytesOf(QString::fromUtf16(u"\u0394\U0001F9EAx"), TextEncoding::windows1252).toStdString(),
              "??x");
    EXPECT_EQ(cutBetweenCharacters("a\xC3\xA4", 2), 1U);
    EXPECT_EQ(cutBetweenCharacters("a\xC3\xA5", 2), 1U);
    EXPECT_EQ(cutBetweenCharacters("a\xC3\xA4", 3), 3U);
    EXPECT_EQ(cutBetweenCharacters("a\xE4\xE4", 2), 2U);
}

TEST_F(Input, MouseArrivesWithPlaceAndModifiersAndIsHeldUntilItIsLetGo) {
    QEvent leave(QEvent::Leave);
    QTest::mousePress(target(), Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier, {3, 4});
    QApplication::sendEvent(target(), &leave); // told to nobody while it is held
    QTest::mouseRelease(target(), Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier, {-3, 400});
    EXPECT_EQ(taken(), Events({"left 12 3 4", "left up 12 -3 400", "capture over"}));
    QTest::mouseDClick(target(), Qt::LeftButton, {}, {7, 8});
    EXPECT_EQ(taken().back(), "double 0 7 8");
    QTest::mouseClick(target(), Qt::RightButton, Qt::ShiftModifier, {9, 9});
    EXPECT_EQ(taken(), Events({"right 4 9 9", "right up 4 9 9"}));
    QTest::mouseClick(target(), Qt::MiddleButton, {}, {9, 9}); // nobody's, not the frame's either
    QMouseEvent move(QEvent::MouseMove, {11.9, 12}, target()->mapToGlobal(QPointF(11.9, 12)), {}, {}, {});
    QApplication::sendEvent(target(), &move);
    QApplication::sendEvent(target(), &leave);
    EXPECT_EQ(taken(), Events({"move 0 11 12", "leave"}));
    for (const bool hide : {false, true}) {
        QTest::mousePress(target(), Qt::LeftButton, {}, {3, 4});
        hide ? outerWidget(*frame)->hide() : pane.ReleaseCapture();
        pane.ReleaseCapture(); // not captured any more
        EXPECT_EQ(taken(), Events({"left 0 3 4", "capture over"}));
    }
    pane.SetCapture();
    frame->SetCapture();
    EXPECT_EQ(taken(), Events({"capture over"})); // the pane's, when the frame took it
}

TEST_F(Input, KeysReachTheFrameWithThePlatformsCodes) {
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_F5, Qt::Key_Left, Qt::Key_PageUp, Qt::Key_Return})
        QTest::keyClick(outerWidget(*frame), key);
    EXPECT_EQ(taken(),
              Events({"key 65 0", "char 97", "key 116 0", "key 37 0", "key 33 0", "key 13 0", "char 13"}));
}

TEST_F(Input, WheelAndBarsScrollByLinesAndPages) {
    turnWheel(0, -120); // no bar, no scrolling
    pane.ShowScrollBar(SB_VERT);
    pane.ShowScrollBar(SB_HORZ);
    turnWheel(0, -120); // a bar with nothing to scroll
    for (const std::string& event : taken())
        EXPECT_EQ(event.substr(0, 5), "size "); // the client area is smaller now
    pane.SetScrollInfo(SB_HORZ, {100, 10, 5});
    pane.SetScrollInfo(SB_VERT, {40000, 10, 7});
    turnWheel(0, -120);
    EXPECT_EQ(taken(), Events(3, "vertical 1 0"));
    for (int i = 0; i < 4; ++i) // small steps add up; the way back starts anew
        turnWheel(0, 15);
    turnWheel(0, -15);
    turnWheel(0, -26);
    EXPECT_EQ(taken(), Events({"vertical 0 0", "vertical 1 0"}));
    turnWheel(120, 0);
    EXPECT_EQ(taken(), Events(3, "horizontal 0 0"));
    QScrollBar* vertical = nullptr;
    for (auto* const bar : outerWidget(pane)->findChildren<QScrollBar*>())
        vertical = bar->orientation() == Qt::Vertical ? bar : vertical;
    for (const auto action : {QAbstractSlider::SliderSingleStepSub, QAbstractSlider::SliderSingleStepAdd,
                              QAbstractSlider::SliderPageStepSub, QAbstractSlider::SliderPageStepAdd}) {
        vertical->triggerAction(action);
        EXPECT_EQ(vertical->value(), 7); // this window ignores it
    }
    EXPECT_EQ(taken(), Events({"vertical 0 0", "vertical 1 0", "vertical 2 0", "vertical 3 0"}));
    vertical->setSliderDown(true);
    vertical->setSliderPosition(32768);
    vertical->setSliderDown(false);
    vertical->setValue(9); // as a screen reader does
    EXPECT_EQ(taken(), Events({"vertical 5 32768", "vertical 4 7", "vertical 5 9"}));
    const struct {
        SCROLLINFO set;
        int page, position;
    } limits[] = {{{5, 3, 9}, 3, 3},  {{5, 3, -2}, 3, 0}, {{5, 0, 9}, 0, 5},
                  {{5, 99, 2}, 6, 0}, {{0, 1, 3}, 1, 0},  {{-7, -1, 3}, 0, 0}};
    for (const auto& row : limits) {
        SCROLLINFO info;
        pane.SetScrollInfo(SB_VERT, row.set);
        EXPECT_TRUE(pane.GetScrollInfo(SB_VERT, info));
        EXPECT_EQ(std::pair(info.nPage, info.nPos), std::pair(row.page, row.position)) << row.set.nPage;
        EXPECT_EQ(vertical->value(), row.position);
        EXPECT_EQ(vertical->isEnabled(), row.set.nMax > 0 && row.page < 6);
    }
}

TEST_F(Input, MessageBoxHasItsButtonsAndCloseIsCancel) {
    const struct {
        std::uint32_t flags;
        Qt::Key key;
        int answer;
    } cases[] = {{MB_OK | MB_ICONHAND, Qt::Key_Escape, IDOK}, {MB_OKCANCEL, Qt::Key_Escape, IDCANCEL},
                 {MB_OKCANCEL, Qt::Key_Return, IDOK},         {MB_YESNOCANCEL, Qt::Key_Escape, IDCANCEL},
                 {MB_YESNOCANCEL, Qt::Key_Return, IDYES},     {MB_YESNO, Qt::Key_Escape, IDNO}};
    for (const auto& row : cases) {
        whenOpen([&](QWidget& open) {
            auto& box = dynamic_cast<QMessageBox&>(open);
            EXPECT_EQ(box.text(), "K\u00E4se <b>");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(QApplication::overrideCursor(), nullptr);
            QTest::keyClick(&open, row.key);
        });
        SetCursor(IDC_WAIT);
        EXPECT_EQ(MessageBoxA(frame, "K\xE4se <b>", "Warning", row.flags), row.answer) << row.flags;
        EXPECT_NE(QApplication::overrideCursor(), nullptr); // what goes on after it goes on waiting
        SetCursor(IDC_ARROW);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
}

TEST_F(Input, MenusSendTheirCommandsFromTheMessageLoopWhenTheyHaveClosed) {
    CMenu menu;
    menu.AppendMenuA(7003, "first");
    menu.AppendMenuA(7004, "second");
    const auto chosen = [this](std::uint32_t id) { frame->onCommand(id); };
    whenOpen([](QWidget& open) { QTest::keyClick(&open, Qt::Key_Escape); });
    menu.TrackPopupMenu(50, 50, *frame, chosen);
    whenOpen([&](QWidget& open) {
        outerWidget(*frame)->close(); // closes the menu first: an operation still waits for it
        EXPECT_FALSE(open.isVisible());
    });
    menu.TrackPopupMenu(50, 50, *frame, chosen);
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events());
    whenOpen([](QWidget& open) {
        QTest::keyClick(&open, Qt::Key_Down);
        QTest::keyClick(&open, Qt::Key_Return);
    });
    menu.TrackPopupMenu(50, 50, *frame, chosen);
    EXPECT_EQ(taken(), Events());
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"command 7003"}));
    const QList<QAction*> columns = outerWidget(*frame)->findChild<QMenuBar*>()->actions();
    ASSERT_EQ(columns.size(), 2);
    const QList<QAction*> file = columns.front()->menu()->actions();
    ASSERT_EQ(file.size(), 2);
    EXPECT_EQ(file.front()->text(), "&Save && go"); // the person reads "Save & go"
    file.back()->trigger();
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"command 999"}));
    file.front()->trigger();
    frame->DestroyWindow(); // a command for a window that has gone is lost
    frame = nullptr;
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"frame deleted"}));
}

} // namespace
