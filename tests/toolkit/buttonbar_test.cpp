#include "toolkit/buttonbar.h"

#include <QAbstractEventDispatcher>

#include "platform/window/msgbox.h"
#include "windowtest.h"

namespace {

struct BarFrame : TSXframe {
    void frameCreated() override {
        bar.Create(AfxRegisterWndClass(getBrush(201)), {0, 0, 200, 31}, *this);
        for (std::uint32_t id = 1; id <= 3; ++id) {
            BarButton button;
            button.commandId = id;
            button.width = 30;
            button.hintText = id == 2 ? "" : "hint";
            bar.addButton(button);
        }
    }
    void frameCommand(std::uint32_t id) override { commands += std::to_string(id); }
    TSXbuttonbar bar{*this};
    std::string commands;
};

struct ButtonBar : testing::Test {
    using Edges = std::pair<COLORREF, COLORREF>; // at the top and at the bottom

    Edges edges(int index) {
        const BarButton& at = bar.button(index);
        return {surfacePixel(bar, at.x + 8, at.y), surfacePixel(bar, at.x + 8, at.y + at.height)};
    }
    // The mouse, at the middle of a button; 5 is beyond all of them.
    QPoint at(int index) { return {2 + 33 * (index - 1) + 15, 15}; }
    void move(int index) {
        QMouseEvent event(QEvent::MouseMove, at(index), widget->mapToGlobal(QPointF(at(index))), {}, {}, {});
        QApplication::sendEvent(widget, &event);
    }
    void press(int index, Qt::KeyboardModifiers keys = {}) {
        QTest::mousePress(widget, Qt::LeftButton, keys, at(index));
    }
    void release(int index) { QTest::mouseRelease(widget, Qt::LeftButton, {}, at(index)); }
    // The timers that run go off, before their time. Gives the periods.
    std::vector<int> timersGoOff(int times = 1) {
        std::vector<int> periods;
        for (int i = 0; i < times; ++i)
            for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(widget)) {
                periods.push_back(timer.interval);
                QTimerEvent event(timer.timerId);
                QApplication::sendEvent(widget, &event);
            }
        return periods;
    }
    static QWidget* hintOnScreen() {
        for (QWidget* const each : QApplication::topLevelWidgets())
            if (each->isVisible() && each->windowType() == Qt::ToolTip)
                return each;
        return nullptr;
    }

    OnShow<BarFrame> frame;
    TSXbuttonbar& bar = frame->bar;
    QWidget* const widget = clientWidget(bar);
    const COLORREF face = GetSysColor(COLOR_BTNFACE), light = GetSysColor(COLOR_BTNHIGHLIGHT),
                   dark = GetSysColor(COLOR_BTNSHADOW);
    const Edges flat{face, face}, raised{light, dark}, pressed{dark, light};
};

} // namespace

TEST_F(ButtonBar, DrawsStatesIconsTicksAndDither) {
    Mosaic states(12, 36, 31);
    BarButton& button = bar.button(1);
    for (int i = 0; i < 6 * 8 * 3; ++i) {
        // plain, with shadow and spark, with shadow, neither; and where one becomes the other
        constexpr int codes[] = {202, 10202, 11202, 12202, 10000, 11000, 11001, 12000};
        button.latched = i / 72;
        button.iconCode = codes[i % 24 / 3];
        button.ticked = i % 3 == 0 ? 0 : 1;
        button.enabled = i % 3 == 2 ? 0 : 1;
        CClientDC dc(&bar);
        bar.drawButton(dc, 1, i / 24 % 3 - 1);
        states.add(bar, 0, 0);
    }
    auto bitmap = std::make_unique<CBitmap>();
    CDC picture;
    bitmap->CreateCompatibleBitmap(CClientDC(&bar), 9, 9);
    picture.SelectObject(bitmap.get());
    picture.FillSolidRect(0, 0, 9, 9, RGB(0, 0, 255));
    picture.FillSolidRect(0, 0, 4, 5, RGB(0, 255, 0));
    BarButton own{.bitmapWidth = 9, .bitmapHeight = 9};
    bar.addButton(own, std::move(bitmap));
    own.label = "Label";
    bar.addButton(own);
    EXPECT_EQ(bar.button(4).width, 17);
    std::string labels;
    answers.text = [&](int, int, unsigned, const char* text, const LOGFONT&, COLORREF) { labels += text; };
    bar.UpdateWindow();
    answers = {};
    states.add(bar, bar.button(4).x, 0);
    states.compare("buttons.png");
    EXPECT_EQ(labels, "Label");
}

TEST_F(ButtonBar, GivesItsCommandWhenReleasedOnTheButtonOrHeldDown) {
    move(1);
    EXPECT_EQ(edges(1), raised);
    move(2);
    EXPECT_EQ(edges(1), flat);
    press(2);
    EXPECT_EQ(edges(2), pressed);
    move(5);
    bar.InvalidateRect(true);
    bar.UpdateWindow();
    EXPECT_EQ(edges(2), raised);
    EXPECT_EQ(edges(1), flat);
    release(5);
    EXPECT_EQ(edges(2), flat);
    press(1);
    bar.ReleaseCapture(); // as when another window comes to the front
    EXPECT_EQ(edges(1), flat);
    release(1);
    bar.button(3).enabled = 0;
    press(3);
    release(3);
    EXPECT_EQ(frame->commands, "");
    press(2, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(timersGoOff(2), std::vector({50, 50}));
    release(2);
    EXPECT_EQ(frame->commands, "22"); // with Shift at each tick, and none at the end
    press(1);
    release(1);
    press(1);
    timersGoOff(28);
    move(2);
    timersGoOff(40);
    release(1);
    EXPECT_EQ(frame->commands, "22111"); // a click, the 24th tick and the 28th
}

TEST_F(ButtonBar, ShowsTheHintOfTheButtonUnderTheMouseAfterADelay) {
    move(1);
    EXPECT_FALSE(hintOnScreen());
    EXPECT_EQ(timersGoOff(), std::vector({600}));
    ASSERT_TRUE(hintOnScreen());
    const BarButton& first = bar.button(1);
    EXPECT_EQ(hintOnScreen()->y(), widget->mapToGlobal(QPoint(0, first.y + first.height + 5)).y());
    EXPECT_EQ(timersGoOff(), std::vector<int>());
    move(2); // has none
    EXPECT_FALSE(hintOnScreen());
    move(3);
    EXPECT_TRUE(hintOnScreen());
    press(3);
    EXPECT_FALSE(hintOnScreen());
    release(3);
    timersGoOff();
    EXPECT_TRUE(hintOnScreen());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(widget, &leave);
    EXPECT_FALSE(hintOnScreen());
    EXPECT_EQ(edges(3), flat);
    move(1); // the delay has to pass anew
    EXPECT_FALSE(hintOnScreen());
    const TSXhintwindow one(bar, {10, 20}, "one", "");
    const QImage shown = hintOnScreen()->grab().toImage();
    int shadow = 0;
    for (int i = 0; i < shown.width() * shown.height(); ++i)
        shadow += shown.pixel(i % shown.width(), i / shown.width()) == 0xFF646464 ? 1 : 0;
    EXPECT_EQ(shadow, 2 * (one.width - 2) + 2 * (one.height - 2) - 4);
    const TSXhintwindow two(bar, {GetSystemMetrics(SM_CXSCREEN), 20}, "one", "and the other");
    EXPECT_EQ(widget->mapToGlobal(QPoint(10, 20)), QPoint(one.x, one.y));
    EXPECT_EQ(std::pair(one.height, two.height), std::pair(18, 34));
    EXPECT_TRUE(two.width > one.width && two.x + two.width == GetSystemMetrics(SM_CXSCREEN) - 2);
}
