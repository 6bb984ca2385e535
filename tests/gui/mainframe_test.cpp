#include "desktoptest.h"
#include "model/problem.h"
#include "platform/system/faults.h"
#include "platform/window/statusbarctrl.h"

TEST_F(DesktopTest, MainWindowHasItsTitleSizeAndPanes) {
    EXPECT_EQ(outerWidget(*main)->windowTitle(), "Database Check- Strains");
    EXPECT_EQ(outerWidget(*main)->size(), QSize(750, 550));
    const QImage icon = outerWidget(*main)->windowIcon().pixmap(32).toImage();
    EXPECT_NE(icon.pixel(0, 0), icon.pixel(16, 16));
    const RECT client = main->GetClientRect();
    const int right = client.right - 1;
    const int bottom = client.bottom - 20;
    const auto place = [](const CWnd& pane) { return outerWidget(pane)->geometry(); };
    EXPECT_EQ(place(*main->problemPane), QRect(1, 24, right - 1, 171));
    EXPECT_EQ(place(*main->typesPane), QRect(1, 222, 244, bottom - 222));
    EXPECT_EQ(place(*main->entriesPane), QRect(250, 222, right - 250, bottom - 222));
}

TEST_F(DesktopTest, ASolutionThatFailsBeepsAndLeavesTheList) {
    const int before = ::database->problemcount;
    select(missingdirectory);
    writeFile(root / "bundles", "in the way");
    command(createdirectorycommand);
    command(removeemptyfilescommand); // not a solution of the selected problem
    command(7099);
    main->selectedProblem = before + 1;
    command(createkeyscommand);
    EXPECT_EQ(beeps, 4);
    EXPECT_EQ(::database->problemcount, before);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].find("Error 48: Unable to create the directory '" + root.path() + "\\bundles'\n"),
              0u);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the wait cursor stays";
    select(emptyfiles);
    diskFaultHook = [](DiskOperation operation) { return operation == DiskOperation::sync; };
    command(removeemptyfilescommand); // which can't be announced in the database
    diskFaultHook = nullptr;
    EXPECT_EQ(beeps, 5);
    EXPECT_EQ(::database->problemcount, before) << "a file leaves the list that was not deleted";
    command(removeemptyfilescommand);
    EXPECT_EQ(::database->problemcount, before - 1) << "a file that has gone stays in the list";
    EXPECT_TRUE(outerWidget(*main->statusBar)->accessibleName().startsWith("Deleted 1 file; "));
}

TEST_F(DesktopTest, LeavingAsksOnlyWhenSomethingIsUnsaved) {
    EXPECT_EQ(main->canClose(), 1);
    EXPECT_EQ(reports, Texts());
    ::database->createkeys();
    const struct { int answer, result, modified; } cases[] = {{IDCANCEL, 0, 1}, {IDNO, 1, 1}, {IDYES, 1, 0}};
    for (const auto& row : cases) {
        answer = row.answer;
        EXPECT_EQ(main->canClose(), row.result) << row.answer;
        EXPECT_EQ(::database->ismodified(), row.modified) << row.answer;
    }
    EXPECT_EQ(reports, Texts(3, "Database has been changed. Do you want to save these changes on disk?"));
}

TEST_F(DesktopTest, WhatWasNotReadOrNotSavedIsToldAndKeepsTheWindowOpen) {
    const auto status = [this] { return outerWidget(*main->statusBar)->accessibleName(); };
    EXPECT_EQ(status(), "8 problems");
    QTest::keyClick(clientWidget(*main->problemPane), Qt::Key_End);
    EXPECT_TRUE(status().startsWith("Remove these experiment keys: clears keys. Add "))
        << status().toStdString();
    ::database->createkeys();
    answer = IDYES;
    diskFaultHook = [](DiskOperation) { return true; };
    EXPECT_EQ(main->canClose(), 0);
    EXPECT_EQ(::database->ismodified(), 1);
    EXPECT_EQ(status(), "2 keys not saved; 8 problems");
    EXPECT_GE(reports.size(), 2U) << "the failure is told beside the question";
    diskFaultHook = nullptr;
    const auto shown = [this] { return outerWidget(*main->statusBar)->grab().toImage(); };
    const QImage before = shown();
    command(101);
    EXPECT_EQ(status(), "Saved; 8 problems");
    EXPECT_NE(shown(), before) << "the line is not painted anew";
    logEnabled = 1; // of a log that was not begun
    std::filesystem::create_symlink("nowhere", root / "seq/X.DEF");
    std::filesystem::create_hard_link(root / "seq/EMPTY.DEF", root / "seq/Y.DEF");
    command(102);
    EXPECT_TRUE(status().startsWith("Read anew what has changed; 8 problems; Could not be read: seq/X.DEF; "
                                    "1 thing left out (see TXLOG.TXT); "))
        << status().toStdString();
    select(duplicatekeys);
    command(renameduplicatescommand);
    EXPECT_NE(reports.back().find("seq/X.DEF"), std::string::npos) << reports.back();
    EXPECT_TRUE(status().startsWith("Rename all duplicate keys: not done; ")) << status().toStdString();
    EXPECT_EQ(::database->ismodified(), 0);
    endLog();
}

TEST_F(DesktopTest, UndoTakesBackWhatWasDoneTheLastFirst) {
    const auto choose = [&](int kind, std::uint32_t solution) {
        select(kind);
        command(solution);
    };
    const auto bytes = [&] { return readFile(root / "DBASE/DBSF001.DBS"); };
    const auto status = [&] { return outerWidget(*main->statusBar)->accessibleName().toStdString(); };
    const std::string before = bytes(), emptyFile = readFile(root / "seq/EMPTY.DEF");
    setenv("XDG_STATE_HOME", home.path().c_str(), 1);
    ::database->committer = std::make_unique<Committer>(::database->tree, CommitOptions{});
    choose(emptyfiles, removeemptyfilescommand);
    EXPECT_EQ(status().find("Deleted 1 file; Undo takes it back; 7 problems"), 0U) << status();
    choose(duplicatekeys, renameduplicatescommand);
    command(101);
    EXPECT_NE(bytes(), before);
    choose(blankkeys, createkeyscommand);
    choose(orphankeys, adddatabaseentriescommand);
    const std::string saved = bytes();
    for (const char* step : {"changed 1 key", "changed 2 keys", "saved 1 key", "deleted 1 file"}) {
        EXPECT_EQ(::database->ismodified(), *step == 'c') << step;
        EXPECT_EQ(bytes() == before, *step == 'd') << step;
        EXPECT_FALSE(std::filesystem::exists(root / "seq/EMPTY.DEF"));
        command(202);
        EXPECT_EQ(status().find("Undone: " + std::string(step)), 0U) << status();
    }
    EXPECT_TRUE(std::filesystem::exists(root / "seq/EMPTY.DEF"));
    EXPECT_EQ(::database->problemcount, 8);
    command(202);
    EXPECT_EQ(beeps, 1);
    choose(duplicatekeys, renameduplicatescommand);
    setenv("XDG_STATE_HOME", (root / "DBASE/DBSF001.DBS").c_str(), 1); // no place for undo files
    ::database->committer = std::make_unique<Committer>(::database->tree, CommitOptions{.ask = true});
    for (const int refused : {IDNO, IDYES}) {
        answer = refused;
        choose(emptyfiles, removeemptyfilescommand);
        EXPECT_EQ(std::filesystem::exists(root / "seq/EMPTY.DEF"), refused == IDNO);
        EXPECT_NE(reports.back().find("can't be undone without it: "), std::string::npos);
    }
    EXPECT_EQ(status().find("Deleted 1 file; 1 key not saved"), 0U) << status();
    command(202);
    EXPECT_EQ(status().find("Nothing is left to undo"), 0U) << "that would pass over the file";
    put("seq/EMPTY.DEF", emptyFile); // by another program
    command(102);
    EXPECT_EQ(status().find("Read anew what has changed"), 0U) << status();
    unsetenv("XDG_STATE_HOME");
}

TEST_F(DesktopTest, ARebuildReadsWhatAnotherProgramHasChanged) {
    ::database->createkeys();
    put(2, "TRAITS", dataFile(2, "Traits", {"Zeta", "Eta"}));
    put(3, "NEW", dataFile(3, "News", {"Theta"}));
    std::filesystem::remove(root / "matrix/BAD.DEF");
    answer = IDNO;
    command(102);
    EXPECT_EQ(reports.size(), 1U);
    EXPECT_EQ(::database->keytree.find("Zeta"), nullptr) << "read against the answer";
    answer = IDYES;
    command(102);
    EXPECT_TRUE(::database->keytree.find("Zeta") && ::database->keytree.find("Theta"));
    EXPECT_EQ(::database->lists[4]->count, 0);
    EXPECT_EQ(::database->ismodified(), 1) << "keys of another file were lost";
    command(101);
    EXPECT_EQ(::database->ismodified(), 0) << "a save finds something in its way";
}

TEST_F(DesktopTest, AKeyHasOneWindowAndThereAreFiftyAtMost) {
    Texts keys;
    for (int i = 0; i < 60; ++i)
        keys.push_back("key " + std::to_string(100 + i));
    put(0, "DBSF002", dataFile(0, "", keys));
    TearDown();
    SetUp();
    command(103);
    command(201);
    for (; main->selectedKey <= 60; ++main->selectedKey) {
        command(201);
        EXPECT_EQ(openWindows(), std::min(main->selectedKey, 50));
    }
    main->entryWindows[7]->frameCommand(999);
    EXPECT_EQ(main->entryWindows[7], nullptr);
    command(201);
    EXPECT_NE(main->entryWindows[7], nullptr);
    command(101);
    command(103);
    EXPECT_EQ(openWindows(), 50);
    command(102);
    EXPECT_EQ(openWindows(), 0);
    main->selectedKey = 9999;
    command(201);
    EXPECT_EQ(beeps, 1);
}
