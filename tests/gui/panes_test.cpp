#include <QAccessible>
#include <QMenuBar>

#include "desktoptest.h"
#include "model/problem.h"
#include "platform/window/menu.h"

TEST_F(DesktopTest, AButtonShowsItsSolutionsAndThenItsRowIsSelected) {
    const TSXproblempane& pane = *main->problemPane;
    const int x = solveX();
    Texts menu;
    answers.popupMenu = [&](const CMenu& shown) {
        for (const CMenu::Item& item : shown.items())
            menu.push_back(std::to_string(item.id) + item.text);
        EXPECT_EQ(surfacePixel(pane, 700, 50), getColour(101)) << "the selection comes after the menu";
        return 0U;
    };
    click(pane, x + 20, 50);
    const TSXproblem& problem = *::database->getproblem(3);
    EXPECT_EQ(menu, Texts{std::to_string(problem.solutioncommand(1)) + problem.solutionlabel(1)});
    EXPECT_EQ(main->selectedProblem, 3);
    const int count = ::database->problemcount;
    answers.popupMenu = [](const CMenu& shown) { return shown.items()[0].id; };
    QTest::mouseClick(clientWidget(pane), Qt::LeftButton, {}, {x + 20, 50});
    EXPECT_EQ(::database->problemcount, count) << "nothing is done while the menu may still be seen";
    settle();
    EXPECT_EQ(::database->problemcount, count - 1);
}

TEST_F(DesktopTest, OnlyAPlainPressOnAButtonOpensAMenu) {
    const TSXproblempane& pane = *main->problemPane;
    const int x = solveX();
    const int count = ::database->problemcount;
    int menus = 0;
    answers.popupMenu = [&](const CMenu&) { return ++menus, 0U; };
    const struct {
        int x, y;
        Qt::KeyboardModifiers keys;
        Qt::MouseButton button;
        bool opens;
    } cases[] = {{x, 20, {}, Qt::LeftButton, true},
                 {x + 40, 39, {}, Qt::LeftButton, true},
                 {x - 1, 30, {}, Qt::LeftButton, false},
                 {x + 41, 30, {}, Qt::LeftButton, false},
                 {x + 20, 30, Qt::ShiftModifier, Qt::LeftButton, false},
                 {x + 20, 30, Qt::ControlModifier, Qt::LeftButton, false},
                 {x + 20, 30, {}, Qt::RightButton, false}};
    for (const auto& row : cases) {
        main->selectedProblem = count;
        menus = 0;
        click(pane, row.x, row.y, row.keys, row.button);
        EXPECT_EQ(menus, row.opens ? 1 : 0) << row.x << ", " << row.y;
        EXPECT_EQ(main->selectedProblem, 2);
    }
    doubleClick(pane, x + 20, 30);
    EXPECT_EQ(menus, 1) << "one for the press, none for the double click";
}

TEST_F(DesktopTest, ALongListOfProblemsScrollsToItsEnd) {
    for (int i = 0; i < 30; ++i)
        put("fprint/BAD" + std::to_string(i) + ".CNF", "junk");
    command(102);
    TSXproblempane& pane = *main->problemPane;
    pane.verticalScroll(SB_THUMBTRACK, 1000);
    const RECT client = pane.GetClientRect();
    const int bottom = 20 * ::database->problemcount - 16 * pane.vPos;
    EXPECT_GT(bottom, 0);
    EXPECT_LE(bottom, client.bottom);
    click(pane, 10, bottom - 1);
    EXPECT_EQ(main->selectedProblem, ::database->problemcount);
    click(pane, 10, bottom + 1);
    EXPECT_EQ(main->selectedProblem, ::database->problemcount) << "a click below the rows selects";
    for (int i = 0; i < 30; ++i)
        std::filesystem::remove(root / ("fprint/BAD" + std::to_string(i) + ".CNF"));
    command(102);
    EXPECT_LE(pane.vPos, 1) << "the rest of the list is out of sight";
}

TEST_F(DesktopTest, AClickSelectsAKeyInView) {
    const TSXentriespane& pane = *main->entriesPane;
    EXPECT_EQ(::database->visiblecount, 3);
    command(103);
    EXPECT_EQ(::database->visiblecount, 4);
    click(pane, 400, 70, {}, Qt::RightButton);
    EXPECT_EQ(main->selectedKey, 4);
    doubleClick(pane, 10, 85); // below the last row
    EXPECT_EQ(main->selectedKey, 4);
    EXPECT_EQ(openWindows(), 0);
}

TEST_F(DesktopTest, EverythingIsReachedByKeysAndReadAloud) {
    QWidget* const window = outerWidget(*main);
    const auto press = [&](std::initializer_list<Qt::Key> keys) {
        for (const Qt::Key key : keys)
            QTest::keyClick(window->focusWidget(), key);
        settle();
    };
    const auto focus = [&] {
        QAccessibleInterface* const pane = QAccessible::queryAccessibleInterface(window->focusWidget());
        QAccessibleInterface* const row = pane->focusChild();
        return pane->text(QAccessible::Name) + "|" + (row == nullptr ? "" : row->text(QAccessible::Name)) +
               "|" + QString::number(pane->childCount());
    };
    const int problems = ::database->problemcount;
    EXPECT_EQ(::database->getproblem(1 << 20), nullptr);
    window->activateWindow();
    std::vector<std::uint32_t> commands;
    answers.popupMenu = [&](const CMenu& menu) { return commands.push_back(menu.items()[0].id), 0U; };
    press({Qt::Key_End, Qt::Key_Down, Qt::Key_Up, Qt::Key_Return});
    EXPECT_EQ(main->selectedProblem, problems - 1);
    EXPECT_EQ(commands.size(), 1U);
    EXPECT_EQ(focus(), QString("Problem list|%1|%2")
                           .arg(::database->getproblem(problems - 1)->message.c_str())
                           .arg(problems));
    press({Qt::Key_Tab, Qt::Key_Down});
    EXPECT_EQ(focus(), "Data types|Gels, files 1, entries 5|3");
    EXPECT_EQ(main->selectedType, 0);
    const auto edge = [](const CWnd& pane) { return clientWidget(pane)->grab().toImage().pixel(3, 0); };
    EXPECT_TRUE(edge(*main->typesPane) == 0xFF000000 && edge(*main->problemPane) != 0xFF000000) << "ring";
    click(*main->problemPane, 100, 10);
    EXPECT_NE(edge(*main->problemPane), 0xFF000000) << "who clicks knows where he is";
    press({Qt::Key_Tab, Qt::Key_Tab, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_Down});
    EXPECT_EQ(focus(), "Entries|Alpha, Database 2, Gels 3|3");
    const auto cut = [&](const std::string& key) {
        ::database->keyarray[1] = &::database->findoraddkey(key);
        return main->entriesPane->cutText(1, 10);
    };
    const std::string longKey(60, 'w');
    EXPECT_EQ(::database->visiblekeys[1], 1);
    EXPECT_EQ(cut(longKey) + cut("short") + main->entriesPane->cutText(1, 260), longKey);
    press({Qt::Key_Return});
    ASSERT_EQ(openWindows(), 1);
    TSXentryframe* const entry = *std::find_if(main->entryWindows.begin(), main->entryWindows.end(),
                                               [](auto* each) { return each != nullptr; });
    QTest::keyClick(outerWidget(*entry)->focusWidget(), Qt::Key_Down);
    QTest::keyClick(outerWidget(*entry)->focusWidget(), Qt::Key_Right);
    EXPECT_EQ(std::pair(entry->selectedType, entry->selectedOccurrence), std::pair(1, 2));
    QAccessibleInterface* const grid = QAccessible::queryAccessibleInterface(clientWidget(*entry->gridPane));
    EXPECT_EQ(grid->child(1)->text(QAccessible::Name), "Gels: GEL,1; GEL,3; GEL,4");
    EXPECT_TRUE(grid->child(1)->state().selected && grid->child(1)->state().focused);
    EXPECT_FALSE(grid->child(0)->state().selected || grid->child(0)->state().focused);
    EXPECT_EQ(grid->indexOfChild(grid->child(1)), 1);
    QAccessibleInterface* const names =
        QAccessible::queryAccessibleInterface(clientWidget(*entry->typeNamesPane));
    ASSERT_EQ(names->childCount(), 3);
    EXPECT_EQ(names->child(2)->text(QAccessible::Name), "Traits");
    EXPECT_TRUE(grid->child(2)->isValid() && grid->child(3) == nullptr);
    int prompts = 0;
    answers.dialog = [&](CDialog&) { return ++prompts, IDCANCEL; };
    QTest::keyClick(outerWidget(*entry)->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(prompts, 1);
    QTest::keyClick(window, Qt::Key_F10);
    EXPECT_NE(window->findChild<QMenuBar*>()->activeAction(), nullptr);
}
