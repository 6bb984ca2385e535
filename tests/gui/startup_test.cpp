#include <QTreeWidget>
#include <QVariant>
#include <cstdio>
#include <cstdlib>

#include "app/application.h"
#include "databasetest.h"
#include "model/marker.h"
#include "platform/system/faults.h"
#include "platform/system/person.h"
#include "platform/window/testaccess.h"
#include "settings/settings.h"
#include "startwindow.h"

namespace {

// A home directory and a settings store of its own, with the database "Strains" chosen.
class StartTest : public DatabaseTest {
protected:
    StartTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe"); // Qt has threads of its own
        setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
        setenv("XDG_STATE_HOME", config.path().c_str(), 1);
        settings.homeDirectory = home.path().c_str();
        settings.currentDatabase = "Strains";
        settings.databaseDirectory = root.path().c_str();
        answers.messageBox = [](const char* text, const char* title, std::uint32_t flags) {
            std::fprintf(stderr, "%s %u: %s\nfrom %s\n", title, flags, text, rootDirectory.c_str());
            return IDCANCEL;
        };
    }
    void choose() {
        ASSERT_EQ(writeSettingsStore(settings), 1);
        ASSERT_EQ(writeSettingsFile(settings), 1);
    }
    // Starting ends the process with the status and shows a box that begins so.
    void leaves(int status, const std::string& box) {
        EXPECT_EXIT({ TSXapp application; }, testing::ExitedWithCode(status), box);
    }

    TempDir config;
    DatabaseSettings settings;
};

// The texts of a window in the order of its parts; "-" cannot be pressed, "*" is pressed by Return.
std::string textsOf(const QWidget& window) {
    std::string texts;
    for (const QWidget* part : window.findChildren<QWidget*>())
        if (const QVariant text = part->property("text"); text.isValid() && !part->isHidden())
            texts += text.toString().toStdString() + (part->isEnabled() ? "" : " -") +
                     (part->property("default").toBool() ? " *\n" : "\n");
    return texts;
}

} // namespace

TEST_F(StartTest, SettingsComeBackAsTheyWereWritten) {
    settings.currentDatabase = "Stämme, 1; \xE4\xFF \"x\" @";
    settings.backgroundColour[2] = -7;
    choose();
    DatabaseSettings read;
    EXPECT_EQ(readSettingsStore(read) + readSettingsFile(read), 2);
    EXPECT_EQ(read.homeDirectory.view(), settings.homeDirectory.view());
    EXPECT_EQ(read.currentDatabase.view(), settings.currentDatabase.view());
    EXPECT_EQ(read.databaseDirectory.view(), settings.databaseDirectory.view());
    EXPECT_EQ(read.backgroundColour[2], -7);
    diskFaultHook = [](DiskOperation operation) { return operation == DiskOperation::read; };
    EXPECT_FALSE(readSettingsFile(read)) << "half of it could name another directory";
    diskFaultHook = nullptr;
}

TEST_F(StartTest, WhatKeepsTheToolFromStartingIsTold) {
    leaves(0, "Error 48: The software is not properly started. Please run the startup program\n");
    settings.currentDatabase = "Other";
    choose();
    settings.currentDatabase = "Strains";
    ASSERT_EQ(writeSettingsStore(settings), 1);
    const std::string place = GetCurrentDirectoryA();
    leaves(0, "Error 16: No valid database specified\nfrom " + place.substr(0, place.size() - 6) + "\n");
    settings.databaseDirectory = (root / "nowhere").c_str();
    choose();
    leaves(0, "Error 48: Unable to open the database\n\n"
              "\\(Error code 3: The system cannot find the path specified.\\)\n");
    for (const std::size_t length : {599 - root.path().size(), std::size_t{20000}}) {
        writeFile(home / "Strains.dbs", "[DIR]\n" + root.path() + "/" + std::string(length, '/') + "\n");
        leaves(0, "Error 48: The path of the database directory is too long: it has at most 599 bytes\n");
    }
    settings.databaseDirectory = root.path().c_str();
    choose();
    Tree tree;
    EXPECT_FALSE(tree.open(root.path()));
    const HANDLE held = openMarker(tree);
    leaves(0, "Error 48: Unable to open the database\nThis database is probably opened by another person\n\n"
              "\\(Error code 32: ");
    CloseHandle(held);
    put("outside.XDB", "");
    leaves(255, "Warning 65: There is a connected database present. ");
    settings.databaseDirectory = home.path().c_str(); // in which nothing of a database stands
    choose();
    std::filesystem::create_directory(home / "directory.xdb");
    std::filesystem::remove(home / "TXLOG.TXT");
    std::filesystem::create_directory(home / "TXLOG.TXT");
    leaves(0, "Error 16: Could not create log file in /.+\n");
}

TEST_F(StartTest, TheStartWindowOffersWhatCanBeDone) {
    EXPECT_EQ(
        textsOf(StartWindow()),
        "Home directory:\nnone chosen yet\n&Home directory... *\n"
        "Choose the home directory first. It holds a small file with the settings of each database, and "
        "the log; it is no database itself. An empty directory will do.\n"
        "&Add... -\n&Directory... -\n&Remove -\n&Changes... -\n&Quit\n&Inspect -\n");
    ASSERT_EQ(writeSettingsStore(settings), 1);
    const std::string top = "Home directory:\n" + home.path() + "\n&Home directory...\n";
    EXPECT_EQ(textsOf(StartWindow()),
              top + "There is no database in the home directory yet. Add one.\n"
                    "&Add... *\n&Directory... -\n&Remove -\n&Changes... -\n&Quit\n&Inspect -\n");
    settings.currentDatabase = "A";
    ASSERT_EQ(writeSettingsFile(settings), 1);
    settings.currentDatabase = "Strains";
    choose();
    const StartWindow window;
    EXPECT_EQ(textsOf(window), top + "&Add...\n&Directory...\n&Remove\n&Changes...\n&Quit\n&Inspect *\n");
    const auto& list = *window.findChild<QTreeWidget*>();
    EXPECT_EQ(list.currentItem()->text(0), "Strains");
    EXPECT_EQ(list.currentItem()->text(1).toStdString(), root.path());
    EXPECT_EQ(list.columnWidth(0), 160) << "room beside short names";
}
