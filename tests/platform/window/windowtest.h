// What the window tests share: a frame with one pane that paints what the test tells it and writes down what
// happens.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <functional>
#include <string>
#include <vector>

#include "platform/window/framewnd.h"
#include "platform/window/resources.h"
#include "platform/window/testaccess.h"
#include "platform/window/windowdc.h"

constexpr COLORREF grey = RGB(192, 192, 192);
constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF blue = RGB(0, 0, 255);
constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF black = RGB(0, 0, 0);

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
    void onLeftButtonDown(unsigned flags, int x, int y) override {
        note("left", flags, x, y);
        this->SetCapture();
    }
    void onLeftButtonUp(unsigned flags, int x, int y) override { note("left up", flags, x, y); }
    void onLeftButtonDoubleClick(unsigned flags, int x, int y) override { note("double", flags, x, y); }
    void onRightButtonDown(unsigned flags, int x, int y) override { note("right", flags, x, y); }
    void onRightButtonUp(unsigned flags, int x, int y) override { note("right up", flags, x, y); }
    void onMouseMove(unsigned flags, int x, int y) override { note("move", flags, x, y); }
    void onMouseLeave() override { note("leave"); }
    void onCaptureChanged() override { note("capture over"); }
    void onKeyDown(std::uint32_t key, std::uint32_t, std::uint32_t flags) override {
        note("key", key, flags);
    }
    void onChar(std::uint32_t letter, std::uint32_t, std::uint32_t) override { note("char", letter); }
    void onVScroll(int code, int position) override { note("vertical", code, position); }
    void onHScroll(int code, int position) override { note("horizontal", code, position); }

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

// A frame of 400 by 300 with a pane of 200 by 100 at (10, 20), on show, painted and with nothing noted yet.
class WindowTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    RecordedFrame* openFrame(CWnd* parent); // deletes itself
    Events taken();                         // what was noted since the last call
    COLORREF pixel(int x, int y) const { return surfacePixel(pane, x, y); }
    void paintPane(std::function<void(CDC&)> paint); // the whole pane, erased first

    const CBrush background{grey};
    Events events;
    RecordedFrame* frame = nullptr; // a test that ends it sets this to null
    Recorder<CWnd> pane{events};
};
