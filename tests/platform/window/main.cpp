#include <gtest/gtest.h>

#include <cstring>

#include "windowtest.h"

int runEntryPoint(int argc, char** argv);

namespace {

const CBrush background(grey);

constexpr MenuEntry menuEntries[] = {
    {"File", "Save & go", 101},
    {"File", "Exit", 999},
    {"Edit", "Change key...", 201},
};
constexpr MenuResource menus[] = {{101, menuEntries}};

constexpr DialogControl controls[] = {
    {101, ControlKind::edit, "", 7, 39, 203, 16},
    {1, ControlKind::defaultButton, "OK", 160, 65, 50, 14},
    {2, ControlKind::button, "Cancel", 160, 87, 50, 14},
    {102, ControlKind::label, "Static", 7, 19, 203, 8},
};
constexpr DialogResource dialogs[] = {{10001, 217, 108, controls}};

constexpr IconColour iconColours[] = {{'R', red}, {'K', black}};
constexpr const char* iconRows[] = {"R.K", ".K"};
constexpr IconResource icons[] = {{105, iconColours, iconRows}};

} // namespace

void WindowTest::SetUp() {
    answers = {};
    setResources({icons, menus, dialogs});
    frame = new RecordedFrame(events); // deletes itself
    ASSERT_TRUE(frame->Create(AfxRegisterWndClass(&background, LoadIconA(105)), "test", {20, 20, 420, 320},
                              nullptr, 101));
    ASSERT_TRUE(pane.Create(AfxRegisterWndClass(&background), {10, 20, 210, 120}, *frame));
    frame->ShowWindow();
    frame->UpdateWindow();
    pane.UpdateWindow();
    QApplication::processEvents();
    taken();
}

void WindowTest::TearDown() {
    if (frame != nullptr)
        frame->DestroyWindow();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Events WindowTest::taken() {
    return std::exchange(events, {});
}

void WindowTest::paintPane(std::function<void(CDC&)> paint) {
    pane.paint = std::move(paint);
    pane.InvalidateRect(true);
    pane.UpdateWindow();
    taken();
}

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc > 1 && std::strncmp(argv[1], "--entry", 7) == 0) // started by the test of the entry point
        return runEntryPoint(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
