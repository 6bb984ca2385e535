#include <QTimer>

#include "desktoptest.h"
#include "toolkit/promptdialog.h"

namespace {

// Whether the cell has its black outline.
bool outlined(const TSXentrygridpane& pane, int type, int n) {
    return surfacePixel(pane, 100 * (n - 1), 20 * type + 10) == black &&
           surfacePixel(pane, 100 * n - 1, 20 * type) == black;
}

// Answers the prompt with a text.
auto typed(const char* text) {
    return [text](CDialog& dialog) {
        dialog.SetDlgItemTextA(TSXpromptdialog::fieldId, text);
        return IDOK;
    };
}

} // namespace

TEST_F(DesktopTest, AnEntryWindowHasItsTitleAndSize) {
    const TSXentryframe& window = openEntry("Alpha");
    EXPECT_EQ(outerWidget(window)->windowTitle(), "Entry Alpha");
    EXPECT_EQ(outerWidget(window)->size(), QSize(530, 380));
    EXPECT_EQ(outerWidget(openEntry(""))->windowTitle(), "Entry ");
    outerWidget(window)->showMinimized();
    EXPECT_FALSE(outerWidget(openEntry("Alpha"))->isMinimized());
    EXPECT_EQ(QApplication::activeWindow(), outerWidget(window)) << "the raised window has no keyboard";
}

TEST_F(DesktopTest, AClickInTheGridSelectsTheRowAndACellOfIt) {
    TSXentryframe& window = openEntry("Alpha"); // 2, 3 and 0 records
    const struct {
        int x, y, type, occurrence;
    } clicks[] = {{250, 30, 1, 3}, {150, 10, 0, 2}, {350, 30, 1, 2}, {50, 50, 2, 1},
                  {150, 50, 2, 1}, {299, 39, 1, 3}, {350, 5, 0, 2},  {50, 70, 0, 2}};
    for (const auto& row : clicks) {
        click(*window.gridPane, row.x, row.y, Qt::ShiftModifier, Qt::RightButton);
        EXPECT_EQ(window.selectedType, row.type) << row.x << ", " << row.y;
        EXPECT_EQ(window.selectedOccurrence, row.occurrence) << row.x << ", " << row.y;
        EXPECT_EQ(outlined(*window.gridPane, row.type, row.occurrence), row.type < 2);
    }
}

TEST_F(DesktopTest, WhatKeysSelectInTheGridIsInView) {
    for (int i = 100; i < 200; ++i)
        put(2, "U" + std::to_string(i),
            dataFile(2, "U" + std::to_string(i), Texts(i == 199 ? 30 : 1, "Alpha")));
    TearDown();
    SetUp();
    TSXentryframe& window = openEntry("Alpha");
    QTest::keyClick(clientWidget(*window.gridPane), Qt::Key_End);
    for (int i = 1; i < 30; ++i)
        QTest::keyClick(clientWidget(*window.gridPane), Qt::Key_Right);
    const int x = 2900 - 16 * window.gridPane->hPos, y = 20 * 102 - 16 * window.gridPane->vPos;
    window.gridPane->UpdateWindow();
    EXPECT_EQ(std::pair(window.selectedType, window.selectedOccurrence), std::pair(102, 30));
    EXPECT_EQ(surfacePixel(*window.gridPane, x, y + 10), black) << "the outline";
    EXPECT_EQ(surfacePixel(*window.gridPane, x + 99, y + 19), black);
}

TEST_F(DesktopTest, TheNamesFollowTheGridUpAndDown) {
    TSXentryframe& window = openEntry("Alpha");
    TSXentrygridpane& grid = *window.gridPane;
    CWnd& names = *window.typeNamesPane;
    const auto place = [&] { return textsOn(names).substr(0, 5); };
    EXPECT_EQ(place(), "5,2,0");
    names.InvalidateRect(false); // waits, and is to be painted where it still stands
    grid.verticalScroll(SB_LINEDOWN, 0);
    const QImage scrolled = outerWidget(names)->grab().toImage();
    window.refreshEntry();
    EXPECT_EQ(outerWidget(names)->grab().toImage(), scrolled) << "a repaint moves the names";
    EXPECT_EQ(place(), "5,-14");
    grid.horizontalScroll(SB_LINEDOWN, 0);
    EXPECT_EQ(place(), "5,-14");
}

TEST_F(DesktopTest, ARecordMovesToTheKeyThatIsTyped) {
    TSXentryframe& window = openEntry("Alpha");
    TSXentryframe& target = openEntry("Gamma");
    click(*window.gridPane, 250, 30);
    const std::string longest(60, 'x'), tooLong = longest + 'x';
    answer = IDNO;
    for (const char* refused : {"ALPHA", tooLong.c_str(), "Gamma"}) {
        answers.dialog = typed(refused);
        window.frameCommand(201);
        EXPECT_EQ(window.key.occurrences(1), 3) << refused;
    }
    EXPECT_EQ(::database->ismodified(), 0);
    answer = IDYES;
    window.frameCommand(201);
    EXPECT_EQ(window.key.occurrences(1), 2);
    EXPECT_EQ(window.selectedOccurrence, 2);
    EXPECT_TRUE(outlined(*window.gridPane, 1, 2));
    settle();
    EXPECT_NE(textsOn(*target.gridPane).find("GEL,4"), std::string::npos) << "the other window shows it too";
    ::database->findoraddkey("K\xE4se");
    answers.dialog = typed("K\xC3\xA4se"); // looks as the key that is there
    window.frameCommand(201);
    EXPECT_EQ(::database->keytree.find("K\xE4se")->occurrences(1), 1);
    answers.dialog = typed(longest.c_str());
    window.frameCommand(201);
    EXPECT_EQ(::database->keytree.find(longest)->occurrences(1), 1);
    settle();
    EXPECT_EQ(::database->getvisiblekey(::database->visiblecount)->key, longest);
    EXPECT_EQ(beeps, 0);
    window.frameCommand(201); // nothing is left at the selection
    EXPECT_EQ(beeps, 1);
    EXPECT_FALSE(outlined(*window.gridPane, 1, 1));
    ::database->findoraddkey("bare");
    const std::string shown = textsOn(*main->entriesPane);
    EXPECT_NE(shown.find(longest.substr(0, 9)), std::string::npos);
    EXPECT_NE(shown.find("808080  bare"), std::string::npos) << "a key without records is grey";
}

TEST_F(DesktopTest, APromptIsDismissedWhenItsWindowGoes) {
    for (const bool closeAll : {false, true}) {
        TSXentryframe& window = openEntry("Alpha");
        QTimer::singleShot(0, [&] {
            const QWidget* const ok = outerWidget(window)->findChild<QWidget*>("1");
            TSXentryframe& other = openEntry("");
            QTimer::singleShot(0, [&] {
                EXPECT_FALSE(ok->isEnabled()) << "what it confirms would wait for the other prompt";
                outerWidget(other)->findChild<QWidget*>("1")->window()->close();
            });
            EXPECT_TRUE((other.frameCommand(201), ok->isEnabled()));
            main->frameCommand(closeAll ? 999 : 102);
        });
        window.frameCommand(201);
        EXPECT_EQ(::database->ismodified(), 0);
        EXPECT_EQ(closeAll ? 0 : openWindows(), 0);
    }
    main = nullptr;
}
