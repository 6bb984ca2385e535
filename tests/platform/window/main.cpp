#include "windowtest.h"

#include <QFileInfo>

namespace {

constexpr MenuEntry menuEntries[] = {
    {"File", "Save & go", 101}, {"File", "Exit", 999}, {"Edit", "Change", 201}};
constexpr MenuResource menus[] = {{101, menuEntries}};
constexpr IconColour iconColours[] = {{'R', red}, {'K', black}};
constexpr const char* iconRows[] = {"R.K", ".K"};
constexpr IconResource icons[] = {{105, iconColours, iconRows}};

} // namespace

void WindowTest::SetUp() {
    answers = {};
    setResources({icons, menus, {}});
    frame = openFrame(nullptr);
    ASSERT_TRUE(pane.Create(AfxRegisterWndClass(&background), {10, 20, 210, 120}, *frame));
    QApplication::processEvents();
    taken();
}

RecordedFrame* WindowTest::openFrame(CWnd* parent) {
    auto* const opened = new RecordedFrame(events);
    EXPECT_TRUE(opened->Create(AfxRegisterWndClass(&background, LoadIconA(105)), "test", {20, 20, 420, 320},
                               parent, 101));
    opened->ShowWindow();
    return opened;
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
    qputenv("XDG_RUNTIME_DIR", QFileInfo(argv[0]).absolutePath().toUtf8() + "/runtime"); // Qt makes it
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
