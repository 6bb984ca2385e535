// Who goes when: windows that end each other or themselves, and the way into the program and out of it.
#include <gtest/gtest.h>

#include <QProcess>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "platform/window/dialog.h"
#include "platform/window/statusbarctrl.h"
#include "platform/window/winapp.h"
#include "windowtest.h"

namespace {

const CBrush brush(grey);

class Lifetime : public WindowTest {
protected:
    RecordedFrame* openChild() {
        auto* const child = new RecordedFrame(events); // deletes itself
        EXPECT_TRUE(child->Create(AfxRegisterWndClass(&brush), "child", {0, 0, 300, 200}, frame, 101));
        child->ShowWindow();
        return child;
    }
};

TEST_F(Lifetime, WindowsThatBelongToAFrameGoBeforeItAndPanesOutliveTheirWindows) {
    openChild();
    RecordedFrame* const second = openChild();
    QApplication::processEvents();
    taken();
    outerWidget(*second)->close();
    EXPECT_EQ(taken(), Events({"frame deleted"}));
    openChild();
    taken();
    frame->DestroyWindow();
    EXPECT_EQ(taken(), Events({"frame deleted", "frame deleted", "frame deleted"}));
    frame = nullptr;
    EXPECT_EQ(pane.host(), nullptr);
    pane.InvalidateRect(true); // without a window nothing of this has an effect
    pane.SetWindowPos(0, 0, 10, 10);
    pane.ScrollWindow(0, 16);
    EXPECT_EQ(pane.GetClientRect().right, 0);
    EXPECT_FALSE(pane.Create(AfxRegisterWndClass(&brush), {0, 0, 9, 9}, pane));
    QApplication::processEvents();
}

TEST_F(Lifetime, PaneThatIsDeletedTakesItsWindowAlong) {
    {
        Recorder<CWnd> shortLived(events);
        ASSERT_TRUE(shortLived.Create(AfxRegisterWndClass(&brush), {0, 0, 50, 50}, *frame));
        EXPECT_FALSE(
            shortLived.Create(AfxRegisterWndClass(&brush), {0, 0, 50, 50}, *frame)); // has one already
        shortLived.SetTimer(1, 1);
    }
    taken();
    QTest::qWait(10);
    EXPECT_EQ(taken(), Events());
}

TEST_F(Lifetime, StatusBarLiesWhereItIsPut) {
    CStatusBarCtrl bar;
    ASSERT_TRUE(bar.Create(*frame));
    bar.SetWindowPos(0, 80, 400, 21);
    bar.UpdateWindow();
    EXPECT_EQ(surfacePixel(bar, 3, 20), GetSysColor(COLOR_BTNFACE));
    EXPECT_EQ(bar.ClientToScreen({0, 0}).y - frame->ClientToScreen({0, 0}).y, 80);
    pane.SetWindowPos(0, 0, 400, 200); // on top now, over the bar
    bar.SetWindowPos(0, 80, 400, 21);
    const QPoint middle = clientWidget(bar)->mapTo(outerWidget(*frame), QPoint(5, 5));
    EXPECT_EQ(outerWidget(*frame)->childAt(middle), clientWidget(bar));
}

// The program that the test below starts: a main window that ends in the way that is asked for.
class TestApp : public CWinApp {
public:
    explicit TestApp(const std::string& way) : way_(way) {
        std::puts("constructed");
        if (way_ == "--entry-exit")
            std::exit(7);
    }
    ~TestApp() override {
        std::puts(QCoreApplication::instance() == nullptr ? "destroyed last" : "destroyed early");
    }

    int InitInstance() override;

private:
    const std::string way_;
    Events events_;
};

class MainWindow : public RecordedFrame {
public:
    using RecordedFrame::RecordedFrame;
    ~MainWindow() override { std::puts("window gone"); }
};

int TestApp::InitInstance() {
    if (way_ == "--entry-refuse")
        return 0;
    auto* const window = new MainWindow(events_); // deletes itself
    m_pMainWnd = window;
    window->Create(AfxRegisterWndClass(&brush), "main", {0, 0, 300, 200}, nullptr, 0);
    window->ShowWindow();
    QTimer::singleShot(20, qApp, [window] { outerWidget(*window)->close(); });
    if (way_ != "--entry-dialog")
        return 1;
    auto* const child = new RecordedFrame(events_); // deletes itself
    child->Create(AfxRegisterWndClass(&brush), "child", {0, 0, 300, 200}, AfxGetMainWnd(), 0);
    child->ShowWindow();
    QTimer::singleShot(0, qApp, [child] {
        static constexpr DialogResource dialogs[] = {{1, 100, 50, {}}};
        setResources({{}, {}, dialogs});
        std::printf("dialog %d\n", CDialog(1, *child).DoModal());
    });
    return 1;
}

TEST(EntryPoint, EndsInEachOfItsWays) {
    struct {
        const char* way;
        int status;
        const char* told;
    } const cases[] = {
        {"--entry-normal", 0, "constructed\nwindow gone\ndestroyed last\n"},
        {"--entry-dialog", 0, "constructed\nwindow gone\ndialog 2\ndestroyed last\n"},
        {"--entry-refuse", 0, "constructed\ndestroyed last\n"},
        {"--entry-exit", 7, "constructed\n"},
    };
    for (const auto& row : cases) {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {row.way});
        ASSERT_TRUE(program.waitForFinished(20000)) << row.way;
        EXPECT_EQ(program.exitCode(), row.status) << row.way;
        EXPECT_EQ(program.readAllStandardOutput().toStdString(), row.told) << row.way;
    }
}

} // namespace

int runEntryPoint(int argc, char** argv) {
    static const std::string way = argv[1];
    return AfxWinMain(argc, argv, []() -> CWinApp& {
        static TestApp app(way);
        return app;
    });
}
