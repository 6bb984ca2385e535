#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>

#include "onshow.h"
#include "platform/system/messagebox.h"
#include "platform/window/statusbarctrl.h"
#include "toolkit/promptdialog.h"

namespace {

std::string journal;

std::string taken() {
    return std::exchange(journal, {});
}

void note(const char* what, int kind, int x, int y) {
    journal += what + std::to_string(kind) + (x == 3 && y == 4 ? " " : " elsewhere ");
}

struct NotingPane : TSXpane {
    void mouseDown(int kind, int x, int y) override { note("down", kind, x, y); }
    void mouseUp(int kind, int x, int y) override { note("up", kind, x, y); }
    void mouseMove(int kind, int x, int y) override { note("move", kind, x, y); }
};

struct NotingFrame : PaneFrame<NotingPane> {
    ~NotingFrame() override { journal += "deleted "; }
    void paintFrame(CDC& dc) override { dc.FillSolidRect(0, 0, 2000, 2000, RGB(1, 1, 1)); }
    void frameSized(int /*type*/, int width, int height) override {
        pane.placeAt(50, 50, width, height); // reaches over the right edge and the status bar
    }
    void frameCommand(std::uint32_t id) override { journal += "command" + std::to_string(id) + " "; }
    int canClose() override { return mayClose; }
    void leftDown(int kind, int x, int y) override { note("DOWN", kind, x, y); }
    void leftUp(int kind, int x, int y) override { note("UP", kind, x, y); }
    void frameMouseMove(int kind, int x, int y) override { note("MOVE", kind, x, y); }
    void keyDown(std::uint32_t key, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) override {
        journal += "key" + std::to_string(key) + " ";
    }
    void charTyped(std::uint32_t unicode, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) override {
        journal += "char" + std::to_string(unicode) + " ";
    }
    int mayClose = 1;
};

} // namespace

TEST(Frame, DrawsTheBorderOverItsContentAndKeepsAStripForTheStatusBar) {
    const COLORREF dark = GetSysColor(COLOR_BTNSHADOW);
    const COLORREF light = GetSysColor(COLOR_BTNHIGHLIGHT);
    const COLORREF content = RGB(1, 1, 1);
    const OnShow<NotingFrame> frame;
    const RECT client = frame->GetClientRect();
    const int right = client.right - 1;
    const int bottom = client.bottom - 20;
    struct {
        int x, y;
        COLORREF colour;
    } const cases[] = {{0, 0, dark},
                       {0, bottom - 1, dark},
                       {right - 1, 0, dark},
                       {right, 0, light},
                       {right, client.bottom - 1, light},
                       {0, bottom, light},
                       {1, 1, content},
                       {1, bottom - 1, content}};
    for (const auto& row : cases)
        EXPECT_EQ(surfacePixel(*frame, row.x, row.y), row.colour) << row.x << ", " << row.y;
    QWidget* const strip = outerWidget(*frame->statusBar);
    EXPECT_EQ(strip->geometry(), QRect(0, client.bottom - 18, right, 21));
    EXPECT_EQ(clientWidget(*frame)->childAt(60, client.bottom - 10)->parentWidget(), strip);
}

TEST(Frame, TakesCommandsOfItsRangeAndKeysAndClosesWhenItMay) {
    OnShow<NotingFrame> frame;
    QWidget* const window = outerWidget(*frame);
    taken();
    for (QAction* const action : window->findChildren<QAction*>())
        action->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(taken(), "command1 command9001 ");
    QTest::keyClick(window, 'a');
    EXPECT_EQ(taken(), "key65 char97 ");
    frame->mayClose = 0;
    window->close();
    EXPECT_EQ(taken(), "");
    frame->mayClose = 1;
    frame.gone = true;
    window->close();
    EXPECT_EQ(taken(), "deleted ");
}

TEST(Frame, TellsMouseButtonsAndKeysAsOneKind) {
    const OnShow<NotingFrame> frame;
    QWidget* const own = clientWidget(*frame);
    QWidget* const pane = clientWidget(frame->pane);
    const Qt::KeyboardModifiers control = Qt::ControlModifier, shift = Qt::ShiftModifier;
    struct {
        QWidget* where;
        Qt::MouseButton button;
        Qt::KeyboardModifiers keys;
        const char* expected;
    } const cases[] = {
        {own, Qt::LeftButton, control, "MOVE1 DOWN1 UP1 "},
        {own, Qt::LeftButton, control | shift, "MOVE2 DOWN2 UP1 "},
        {pane, Qt::LeftButton, {}, "move1 down1 up1 "},
        {pane, Qt::LeftButton, control, "move1 down5 up1 "},
        {pane, Qt::LeftButton, shift, "move2 down6 up1 "},
        {pane, Qt::LeftButton, control | shift, "move2 down5 down6 up1 "},
        {pane, Qt::RightButton, control, "move1 down11 up11 "},
        {pane, Qt::RightButton, shift, "move2 down13 up11 "},
    };
    taken();
    for (const auto& row : cases) {
        QMouseEvent move(QEvent::MouseMove, {3, 4}, row.where->mapToGlobal(QPointF(3, 4)), {}, {}, row.keys);
        QApplication::sendEvent(row.where, &move);
        QTest::mouseClick(row.where, row.button, row.keys, {3, 4});
        EXPECT_EQ(taken(), row.expected);
    }
    QTest::mouseDClick(pane, Qt::LeftButton, shift, {3, 4});
    EXPECT_NE(taken().find("down2 "), std::string::npos);
}

TEST(Prompt, GivesBackWhatTheFieldHoldsUpToTheLimit) {
    const OnShow<TSXframe> frame;
    const std::string longest(99, 'n');
    struct {
        const char* preset;
        std::string typed; // in place of the preset text, which is selected
        int answer, result;
        std::string text;
    } const cases[] = {{"old", "new", IDOK, 1, "new"},
                       {"old", "new", IDCANCEL, 0, "old"},
                       {"old", "", IDOK, 1, "old"},
                       {"", "", IDOK, 1, ""},
                       {"", longest + "more", IDOK, 1, longest.substr(1)}};
    for (const auto& row : cases) {
        char text[100] = "";
        std::strcpy(text, row.preset);
        answers.dialog = [&row, &frame](CDialog& /*dialog*/) {
            auto* const field = outerWidget(*frame)->findChild<QDialog*>()->findChild<QLineEdit*>();
            QTest::keyClicks(field, QString::fromStdString(row.typed));
            EXPECT_LE(field->text().size(), 99);
            return row.answer;
        };
        EXPECT_EQ(promptForText(*frame, "Change key", "Enter new key", text, 99), row.result);
        EXPECT_EQ(text, row.text);
    }
    answers.dialog = nullptr;
}
