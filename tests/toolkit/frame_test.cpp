#include <QClipboard>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include "toolkit/promptdialog.h"
#include "windowtest.h"

namespace {

std::string journal;

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
    void frameCommand(std::uint32_t id) override { journal += std::to_string(id) + " "; }
    int canClose() override { return mayClose; }
    void leftDown(int kind, int x, int y) override { note("DOWN", kind, x, y); }
    void leftUp(int kind, int x, int y) override { note("UP", kind, x, y); }
    void frameMouseMove(int kind, int x, int y) override { note("MOVE", kind, x, y); }
    void keyDown(std::uint32_t key, std::uint32_t, std::uint32_t) override {
        note("key", static_cast<int>(key), 3, 4);
    }
    void charTyped(std::uint32_t code, std::uint32_t, std::uint32_t) override {
        note("char", static_cast<int>(code), 3, 4);
    }
    int mayClose = 1;
};

} // namespace

TEST(Frame, IsNotPlacedWhereNobodyWouldFindIt) {
    const OnShow<TSXframe> frame;
    QWidget* const window = outerWidget(*frame);
    const QRect before = window->geometry(),
                small[] = {{60, 70, 99, 200}, {60, 70, 200, 99}, {60, 70, 100, 100}};
    for (const QRect& place : small) {
        window->setGeometry(place);
        const std::string kept = frame->GetWindowPlacement();
        window->setGeometry(before);
        frame->SetWindowPlacement(kept);
        EXPECT_EQ(window->geometry(), place == small[2] ? place : before);
    }
}

TEST(Frame, TakesCommandsOfItsRangeAndKeysAndClosesWhenItMay) {
    OnShow<NotingFrame> frame;
    QWidget* const window = outerWidget(*frame);
    journal.clear();
    for (const std::uint32_t id : {0U, 1U, 9001U, 9002U})
        static_cast<MessageTarget&>(*frame).onCommand(id);
    QTest::keyClick(window, 'a');
    frame->mayClose = 0;
    window->close();
    EXPECT_EQ(journal, "1 9001 key65 char97 ");
    frame->mayClose = 1;
    frame.gone = true;
    window->close();
    EXPECT_EQ(journal, "1 9001 key65 char97 deleted ");
}

TEST(Frame, TellsMouseButtonsAndKeysAsOneKind) {
    const OnShow<NotingFrame> frame;
    QWidget* const own = clientWidget(*frame);
    QWidget* const pane = clientWidget(frame->pane);
    const Qt::KeyboardModifiers control = Qt::ControlModifier, shift = Qt::ShiftModifier;
    const struct {
        QWidget* where;
        Qt::MouseButton button;
        Qt::KeyboardModifiers keys;
        const char* expected;
    } cases[] = {{own, Qt::LeftButton, control, "MOVE1 DOWN1 UP1 "},
                 {own, Qt::LeftButton, control | shift, "MOVE2 DOWN2 UP1 "},
                 {pane, Qt::LeftButton, {}, "move1 down1 up1 "},
                 {pane, Qt::LeftButton, control, "move1 down5 up1 "},
                 {pane, Qt::LeftButton, shift, "move2 down6 up1 "},
                 {pane, Qt::LeftButton, control | shift, "move2 down5 down6 up1 "},
                 {pane, Qt::RightButton, control, "move1 down11 up11 "},
                 {pane, Qt::RightButton, shift, "move2 down13 up11 "}};
    for (const auto& row : cases) {
        journal.clear();
        QMouseEvent move(QEvent::MouseMove, {3, 4}, row.where->mapToGlobal(QPointF(3, 4)), {}, {}, row.keys);
        QApplication::sendEvent(row.where, &move);
        QTest::mouseClick(row.where, row.button, row.keys, {3, 4});
        EXPECT_EQ(journal, row.expected);
    }
    QTest::mouseDClick(pane, Qt::LeftButton, shift, {3, 4});
    EXPECT_NE(journal.find("down2 "), std::string::npos);
}

// A preset text, what is typed or pasted in its place, the keys after it, and what comes of it.
TEST(Prompt, GivesBackWhatTheFieldHoldsInItsEncodingUpToTheLimit) {
    const OnShow<TSXframe> frame;
    const std::string longest(99, 'n');
    const struct {
        std::string preset, typed;
        bool paste;
        QList<Qt::Key> keys;
        int result;
        std::string text;
    } cases[] = {
        {"old", "new", false, {}, 1, "new"},
        {"old", "new", false, {Qt::Key_Tab}, 1, "new"},              // Return presses OK
        {"old", "new", false, {Qt::Key_Tab, Qt::Key_Tab}, 0, "old"}, // and Cancel
        {"old", "new", false, {Qt::Key_Escape}, 0, "old"},
        {"old", "", false, {Qt::Key_Delete}, 1, ""},
        {"a\nb", "", false, {}, 1, "a\nb"}, // untouched
        {"a\nb", "c", false, {Qt::Key_End}, 1, "c"},
        {"a\x80\x81z", "", false, {}, 1, "a\x80\x81z"},
        {"", longest + "more", false, {}, 1, longest.substr(1)}, // 99 fit into the field, 98 come back
        {longest + longest, "", false, {Qt::Key_End, Qt::Key_X}, 1, longest.substr(1)},
        {"old", "\xC3\xA4", true, {}, 1, "\xC3\xA4"}, // UTF-8 for plain ASCII
        {"\xDF", "\xC3\xA4\xE2\x82\xAC\xC2\x81\xCE\x94", true, {}, 1, "\xE4\x80\x81?"}, // or as it was
        {"old", longest.substr(2) + "\xC3\xA4", true, {}, 1, longest.substr(2)},        // no half character
        {"old", "A-1\nA-2\n", true, {}, 1, "A-1"},
        {"old", "\r\nx", true, {}, 1, ""},
        {"a\nb", "\nb", true, {}, 1, ""}};
    for (const auto& row : cases) {
        char text[300] = "";
        std::strcpy(text, row.preset.c_str());
        QTimer::singleShot(0, [&] {
            auto* const dialog = outerWidget(*frame)->findChild<QDialog*>();
            auto* const field = dialog->findChild<QLineEdit*>();
            EXPECT_EQ(dialog->findChild<QLabel*>()->text(), "Enter new key");
            EXPECT_EQ(dialog->findChild<QLabel*>()->x(), field->x());
            EXPECT_NEAR(dialog->height() - dialog->childrenRect().bottom(), 12, 8)
                << "room below the buttons";
            EXPECT_FALSE(clientWidget(*frame)->isEnabled());
            QApplication::clipboard()->setText(QString::fromStdString(row.typed));
            row.paste ? field->paste() : QTest::keyClicks(field, QString::fromStdString(row.typed));
            for (const Qt::Key key : row.keys)
                QTest::keyClick(dialog->focusWidget(), key);
            EXPECT_LE(static_cast<std::size_t>(field->text().size()), std::max(99UL, row.preset.size()))
                << row.typed;
            if (dialog->isVisible())
                QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
        });
        EXPECT_EQ(promptForText(*frame, "Change key", "Enter new key", text, 99), row.result) << row.typed;
        EXPECT_TRUE(clientWidget(*frame)->isEnabled());
        EXPECT_EQ(text, row.text);
    }
}
