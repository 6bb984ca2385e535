// What asks the person: message boxes, dialogs and menus, with real keys and with answers given beforehand;
// and the bytes that come of what is typed.
#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include "platform/window/dialog.h"
#include "platform/window/internal/conversion.h"
#include "platform/window/menu.h"
#include "platform/window/msgbox.h"
#include "windowtest.h"

namespace {

class Asking : public WindowTest {
protected:
    // Runs the step once the next modal window or menu stands.
    static void whenOpen(std::function<void(QWidget&)> step) {
        QTimer::singleShot(20, qApp, [step = std::move(step)] {
            QWidget* open = QApplication::activePopupWidget();
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (open == nullptr && widget->isVisible() && dynamic_cast<QDialog*>(widget) != nullptr)
                    open = widget;
            }
            ASSERT_NE(open, nullptr);
            step(*open);
        });
    }
    // Key by key, also letters that QTest has no key for.
    static void type(QWidget& field, const QString& text) {
        for (const QChar letter : text) {
            QKeyEvent event(QEvent::KeyPress, 0, Qt::NoModifier, letter);
            QApplication::sendEvent(&field, &event);
        }
    }
    static void whenOpenPress(Qt::Key key) {
        whenOpen([key](QWidget& open) { QTest::keyClick(&open, key); });
    }
};

class Prompt : public CDialog {
public:
    Prompt(CWnd& parent, std::string preset, int limit)
        : CDialog(10001, parent), text(std::move(preset)), limit_(limit) {}

    std::string text;

    void OnInitDialog() override {
        SetWindowTextA("Change key");
        SetDlgItemTextA(102, "Enter new key");
        SetDlgItemTextA(101, text.c_str());
        LimitText(101, limit_);
    }
    void OnOK() override {
        std::vector<char> buffer(500);
        GetDlgItemTextA(101, buffer.data(), static_cast<std::size_t>(limit_));
        text = buffer.data();
        CDialog::OnOK();
    }

private:
    const int limit_;
};

TEST(Encoding, BytesComeBackAsTheyWereInEitherEncoding) {
    struct {
        const char* bytes;
        TextEncoding encoding;
        const char16_t* text;
    } const cases[] = {
        {"plain", TextEncoding::utf8, u"plain"},
        {"K\xC3\xA4se \xE2\x82\xAC", TextEncoding::utf8, u"K\u00E4se \u20AC"},
        {"\xF0\x9F\xA7\xAA", TextEncoding::utf8, u"\U0001F9EA"},
        {"K\xE4se \x80\x81\x9F", TextEncoding::windows1252, u"K\u00E4se \u20AC\u0081\u0178"},
        {"\xC3\xA4\xE4", TextEncoding::windows1252, u"\u00C3\u00A4\u00E4"}, // not all of it is UTF-8
        {"cut \xC3", TextEncoding::windows1252, u"cut \u00C3"},
        {"\xC0\xAF", TextEncoding::windows1252, u"\u00C0\u00AF"},           // an overlong form
        {"\xED\xA0\x80", TextEncoding::windows1252, u"\u00ED\u00A0\u20AC"}, // half of a pair
        {"\xEF\xBB\xBFx", TextEncoding::utf8, u"\uFEFFx"},                  // the mark is part of the text
    };
    for (const auto& row : cases) {
        EXPECT_EQ(encodingOf(row.bytes), row.encoding) << row.bytes;
        EXPECT_EQ(unicodeOf(row.bytes).toStdU16String(), row.text) << row.bytes;
        EXPECT_EQ(bytesOf(unicodeOf(row.bytes), row.encoding).toStdString(), row.bytes);
    }
    EXPECT_EQ(bytesOf(u"\u0394\U0001F9EAx"_qs, TextEncoding::windows1252).toStdString(), "??x");
    EXPECT_EQ(cutBetweenCharacters("a\xC3\xA4", 2), 1U);
    EXPECT_EQ(cutBetweenCharacters("a\xC3\xA4", 3), 3U);
    EXPECT_EQ(cutBetweenCharacters("a\xE4\xE4", 2), 2U);
}

TEST_F(Asking, MessageBoxHasItsButtonsAndCloseIsCancel) {
    struct {
        std::uint32_t flags;
        Qt::Key key;
        int answer;
    } const cases[] = {
        {MB_OK | MB_ICONHAND, Qt::Key_Escape, IDOK},
        {MB_OKCANCEL | MB_ICONINFORMATION, Qt::Key_Escape, IDCANCEL},
        {MB_OKCANCEL, Qt::Key_Return, IDOK},
        {MB_YESNOCANCEL | MB_ICONEXCLAMATION, Qt::Key_Escape, IDCANCEL},
        {MB_YESNOCANCEL, Qt::Key_Return, IDYES},
        {MB_YESNO, Qt::Key_Escape, IDNO},
    };
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

TEST_F(Asking, AnswersGivenBeforehandShowNothing) {
    int beeps = 0;
    answers.messageBox = [](const char* text, const char*, std::uint32_t) {
        return text[0] == 'a' ? IDYES : IDNO;
    };
    answers.beep = [&beeps] { ++beeps; };
    answers.popupMenu = [](const CMenu& menu) { return menu.items().at(1).id; };
    answers.dialog = [](CDialog& dialog) {
        dialog.SetDlgItemTextA(101, "given");
        return IDOK;
    };
    EXPECT_EQ(MessageBoxA(nullptr, "a", "", MB_YESNO), IDYES);
    EXPECT_EQ(MessageBoxA(frame, "b", "", MB_YESNO), IDNO);
    MessageBeep();
    EXPECT_EQ(beeps, 1);
    Prompt prompt(*frame, "old", 99);
    EXPECT_EQ(prompt.DoModal(), IDOK);
    EXPECT_EQ(prompt.text, "given");
    CMenu menu;
    menu.AppendMenuA(7003, "first");
    menu.AppendMenuA(7004, "second");
    menu.TrackPopupMenu(0, 0, *frame);
    EXPECT_EQ(taken(), Events()); // the command waits for the message loop
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"command 7004"}));
}

TEST_F(Asking, TypedTextKeepsTheEncodingAndTheLimitInBytes) {
    const std::string long98(98, 'x');
    struct {
        std::string preset;
        int limit;
        QString typed; // in place of the preset, which is selected
        std::string result;
    } const cases[] = {
        {"old", 99, QString(120, 'x'), long98},                 // 99 fit into the field, 98 come back
        {"old", 99, QString::fromUtf8("\xC3\xA4"), "\xC3\xA4"}, // UTF-8 for plain ASCII
        {"Stra\xDF"
         "e",
         99, QString::fromUtf8("\xC3\xA4"), "\xE4"}, // Windows-1252 stays that
        {"Stra\xDF"
         "e",
         99, QString::fromUtf8("\xCE\x94"), "?"}, // and shows what it can't hold
        {"old", 6, QString::fromUtf8("\xC3\xA4\xC3\xA4\xC3\xA4"),
         "\xC3\xA4\xC3\xA4"},                        // 6 bytes fit, 5 come back whole
        {"a\x80\x81z", 99, QString(), "a\x80\x81z"}, // untouched
        {"far too long", 5, QString(), "far "},
    };
    for (const auto& row : cases) {
        Prompt prompt(*frame, row.preset, row.limit);
        whenOpen([&](QWidget& open) {
            auto* const field = open.findChild<QLineEdit*>("101");
            EXPECT_TRUE(field->hasFocus());
            EXPECT_EQ(open.windowTitle(), "Change key");
            type(*field, row.typed);
            QTest::keyClick(field, Qt::Key_Return);
        });
        EXPECT_EQ(prompt.DoModal(), IDOK);
        EXPECT_EQ(prompt.text, row.result);
    }
    const struct {
        const char *preset, *pasted, *result;
    } pastes[] = {
        {"old", "A-1\nA-2\n", "A-1"}, {"old", "\r\nx", ""}, {"a\nb", nullptr, "a\nb"}, {"a\nb", "\nb", ""}};
    for (const auto& row : pastes) {
        Prompt pasting(*frame, row.preset, 99);
        whenOpen([&](QWidget& open) {
            QApplication::clipboard()->setText(row.pasted);
            if (row.pasted != nullptr)
                open.findChild<QLineEdit*>("101")->paste();
            QTest::keyClick(&open, Qt::Key_Return);
        });
        EXPECT_EQ(pasting.DoModal(), IDOK);
        EXPECT_EQ(pasting.text, row.result) << row.preset;
    }
    Prompt prompt(*frame, "far too long", 5); // a longer text can only be made shorter
    whenOpen([](QWidget& open) {
        auto* const field = open.findChild<QLineEdit*>("101");
        field->end(false);
        type(*field, "!");
        EXPECT_EQ(field->text(), "far too long");
        QTest::keyClick(field, Qt::Key_Backspace);
        EXPECT_EQ(field->text(), "far too lon");
        QTest::keyClick(&open, Qt::Key_Escape);
    });
    EXPECT_EQ(prompt.DoModal(), IDCANCEL);
    EXPECT_EQ(prompt.text, "far too long");
}

TEST_F(Asking, ReturnPressesTheButtonWithTheFocusAndInTheFieldOk) {
    for (const int tabs : {0, 1, 2}) {
        Prompt prompt(*frame, "old", 99);
        whenOpen([tabs](QWidget& open) {
            for (int i = 0; i < tabs; ++i)
                QTest::keyClick(&open, Qt::Key_Tab);
            QTest::keyClick(open.focusWidget(), Qt::Key_Return);
        });
        EXPECT_EQ(prompt.DoModal(), tabs == 2 ? IDCANCEL : IDOK);
    }
}

TEST_F(Asking, DialogDisablesItsWindowAloneAndGoesWithIt) {
    Events others;
    auto* const other = new RecordedFrame(others); // deletes itself
    const CBrush brush(grey);
    ASSERT_TRUE(other->Create(AfxRegisterWndClass(&brush), "other", {0, 0, 300, 200}, frame, 101));
    other->ShowWindow();
    Prompt prompt(*other, "old", 99);
    whenOpen([&](QWidget&) {
        others.clear();
        taken();
        outerWidget(*other)->close();
        QTest::mouseClick(clientWidget(*other), Qt::LeftButton);
        EXPECT_EQ(others, Events());
        QTest::mouseClick(clientWidget(*frame), Qt::RightButton, Qt::NoModifier, {300, 200});
        EXPECT_EQ(taken(), Events({"right 0 300 200", "right up 0 300 200"}));
        other->DestroyWindow();
        EXPECT_EQ(others.back(), "frame deleted");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // its widgets wait all the same
    });
    EXPECT_EQ(prompt.DoModal(), IDCANCEL);
    EXPECT_EQ(prompt.text, "old");
}

TEST_F(Asking, MenusSendTheirCommandsFromTheMessageLoop) {
    auto* const menuBar = outerWidget(*frame)->findChild<QMenuBar*>();
    ASSERT_EQ(menuBar->actions().size(), 2);
    QMenu* const file = menuBar->actions().front()->menu();
    ASSERT_EQ(file->actions().size(), 2);
    EXPECT_EQ(file->actions().front()->text(), "Save && go"); // the person reads "Save & go"
    file->actions().front()->trigger();
    EXPECT_EQ(taken(), Events());
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"command 101"}));
    file->actions().back()->trigger();
    frame->DestroyWindow(); // a command for a window that has gone is lost
    frame = nullptr;
    QApplication::processEvents();
    EXPECT_EQ(taken().back(), "frame deleted");
}

TEST_F(Asking, PopupMenuReturnsWhenItHasClosed) {
    CMenu menu;
    menu.AppendMenuA(7003, "first");
    menu.AppendMenuA(7004, "second");
    whenOpenPress(Qt::Key_Escape);
    menu.TrackPopupMenu(50, 50, *frame);
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events());
    whenOpen([&](QWidget& open) {
        outerWidget(*frame)->close(); // closes the menu first: an operation still waits for it
        EXPECT_FALSE(open.isVisible());
    });
    menu.TrackPopupMenu(50, 50, *frame);
    EXPECT_NE(frame->host(), nullptr);
    whenOpen([](QWidget& open) {
        QTest::keyClick(&open, Qt::Key_Down);
        QTest::keyClick(&open, Qt::Key_Return);
    });
    menu.TrackPopupMenu(50, 50, *frame);
    QApplication::processEvents();
    EXPECT_EQ(taken(), Events({"command 7003"}));
}

} // namespace
