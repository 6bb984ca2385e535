// What the window tests share: a frame on show, of the kind that a test wants; one with a pane that paints
// what the test tells it, and writes down what happens; and pictures of small parts.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QTest>
#include <functional>
#include <string>
#include <vector>

#include "platform/window/framewnd.h"
#include "platform/window/resources.h"
#include "platform/window/testaccess.h"
#include "platform/window/windowdc.h"
#include "resources/resources.h"
#include "toolkit/drawing.h"
#include "toolkit/frame.h"
#include "toolkit/pane.h"

constexpr COLORREF grey = RGB(192, 192, 192);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 255);
constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF black = RGB(0, 0, 0);
inline const CBrush greyBrush{grey};

// Makes and shows a frame of 400 by 300, which deletes itself.
template <class Frame> Frame* show(Frame* frame, CWnd* parent = nullptr, int menu = 0) {
    EXPECT_TRUE(
        frame->Create(AfxRegisterWndClass(&greyBrush, nullptr, menu), "test", {20, 20, 420, 320}, parent));
    frame->ShowWindow();
    frame->UpdateWindow();
    return frame;
}

// Goes at the latest when the test ends.
template <class Frame> struct OnShow {
    ~OnShow() {
        if (!gone)
            frame->DestroyWindow();
    }
    Frame* operator->() const { return frame; }
    Frame& operator*() const { return *frame; }

    Frame* const frame = show(new Frame);
    bool gone = false;
};

// Makes its pane.
template <class Pane> struct PaneFrame : TSXframe {
    void frameCreated() override { pane.Create(AfxRegisterWndClass(getBrush(1)), {20, 20, 100, 100}, *this); }
    Pane pane;
};

using Events = std::vector<std::string>;

// Adds a line for each event to the list that the test owns, and so outlives the window.
template <class Base> class Recorder : public Base {
public:
    explicit Recorder(Events& list) : events(list) {}

    std::function<void(CDC&)> paint = [](CDC&) {};

    void onPaint() override {
        CPaintDC context(*this);
        const RECT box = context.GetClipBox();
        note("paint", box.left, box.top, box.right, box.bottom);
        paint(context);
    }
    void onSize(int, int width, int height) override { note("size", width, height); }
    void onCommand(std::uint32_t id) override { note("command", id); }
    void onMouse(MouseAction action, unsigned flags, POINT place) override {
        constexpr const char* names[] = {"left", "left up", "double", "right", "right up", "move"};
        note(names[static_cast<int>(action)], flags, place.x, place.y);
        if (action == MouseAction::leftPress)
            this->SetCapture();
    }
    void onMouseLeave() override { note("leave"); }
    void onCaptureChanged() override { note("capture over"); }
    void onKeyDown(std::uint32_t key, std::uint32_t, std::uint32_t flags) override {
        note("key", key, flags);
    }
    void onChar(std::uint32_t letter, std::uint32_t, std::uint32_t) override { note("char", letter); }
    void onScroll(ScrollBarKind bar, int code, int position) override {
        note(bar == SB_VERT ? "vertical" : "horizontal", code, position);
    }

protected:
    template <class... Numbers> void note(std::string line, Numbers... numbers) {
        ((line += ' ' + std::to_string(numbers)), ...);
        events.push_back(line);
    }

private:
    Events& events;
};

class RecordedFrame : public Recorder<CFrameWnd> {
public:
    using Recorder::Recorder;
    ~RecordedFrame() override { note("frame deleted"); }
};

// A frame with a pane of 200 by 100 at (10, 20), painted and with nothing noted yet.
class WindowTest : public testing::Test {
protected:
    static constexpr MenuEntry menuEntries[] = {
        {"File", "Save & go", 101}, {"File", "Exit", 999}, {"Edit", "Change", 201}};
    static constexpr MenuResource menus[] = {{101, menuEntries}};

    void SetUp() override {
        answers = {};
        setResources({{}, menus, {}});
        frame = openFrame(nullptr);
        ASSERT_TRUE(pane.Create(AfxRegisterWndClass(&greyBrush), {10, 20, 210, 120}, *frame));
        QApplication::processEvents();
        taken();
    }
    void TearDown() override {
        if (frame != nullptr)
            frame->DestroyWindow();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        setResources(programResources);
    }

    RecordedFrame* openFrame(CWnd* parent) { return show(new RecordedFrame(events), parent, 101); }
    // What was noted since the last call.
    Events taken() { return std::exchange(events, {}); }
    COLORREF pixel(int x, int y) const { return surfacePixel(pane, x, y); }
    // The whole pane, erased first.
    void paintPane(std::function<void(CDC&)> paint) {
        pane.paint = std::move(paint);
        pane.InvalidateRect(true);
        pane.UpdateWindow();
        taken();
    }

    Events events;
    RecordedFrame* frame = nullptr; // a test that ends it sets this to null
    Recorder<CWnd> pane{events};
};

// Parts of what windows show, side by side in one picture, which is compared with one in golden/. With
// TX_WRITE_GOLDEN set that one is made anew, to be looked at before it is kept.
class Mosaic {
public:
    Mosaic(int columns, int width, int height) : perRow(columns), tile(width, height) {}

    // The part of the client area whose corner that is, as the next tile.
    void add(const CWnd& window, int left, int top) {
        if (count % perRow == 0)
            picture = picture.copy(0, 0, perRow * tile.width(), (count / perRow + 1) * tile.height());
        for (int i = 0; i < tile.width() * tile.height(); ++i) {
            const int x = i % tile.width(), y = i / tile.width();
            const COLORREF c = surfacePixel(window, left + x, top + y);
            picture.setPixel(count % perRow * tile.width() + x, count / perRow * tile.height() + y,
                             qRgb(c & 0xFF, c >> 8 & 0xFF, c >> 16 & 0xFF));
        }
        ++count;
    }

    void compare(const char* name) const {
        const QString file = QString(GOLDEN) + name;
        if (qEnvironmentVariableIsSet("TX_WRITE_GOLDEN"))
            picture.save(file);
        const QImage golden = QImage(file).convertToFormat(picture.format());
        EXPECT_TRUE(golden == picture) << name << " looks different";
    }

private:
    int perRow, count = 0;
    QSize tile;
    QImage picture{1, 1, QImage::Format_RGB32};
};
