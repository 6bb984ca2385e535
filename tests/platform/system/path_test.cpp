#include "platform/system/person.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tempdir.h"

namespace fs = std::filesystem;

TEST(Path, IsTakenAsItStandsElseIgnoringCase) {
    TempDir directory;
    fs::create_directories(directory / "DBase/Sub");
    for (const char* name : {"DBase/File", "DBase/fiLE", "DBase/\xC4.DBS"})
        writeFile(directory / name, "");
    const struct {
        const char* given;
        const char* found;
        bool exists;
    } cases[] = {
        {"DBase\\fiLE", "DBase/fiLE", true},
        {"DBASE/SUB/../FILE", "DBase/Sub/../File", true}, // the first of two
        {"DBASE/New/Sub/x.DBS", "DBase/New/Sub/x.DBS", false},
        {"DBASE/\xC4.dbs", "DBase/\xC4.DBS", true},
        {"DBASE/\xE4.dbs", "DBase/\xE4.dbs", false}, // only the ASCII letters have a case
    };
    for (const auto& c : cases) {
        EXPECT_EQ(resolvePath(directory / c.given), directory / c.found);
        EXPECT_EQ(pathExists(directory / c.given), c.exists) << c.given;
    }
    EXPECT_FALSE(pathExists(""));
}

TEST(Directory, TheCurrentOneFollowsThePathRules) {
    TempDir directory;
    fs::create_directory(directory / "Sub");
    writeFile(directory / "File", "");
    const std::string before = GetCurrentDirectoryA();
    ASSERT_NE(SetCurrentDirectoryA((directory / "SUB").c_str()), 0);
    EXPECT_EQ(GetCurrentDirectoryA(), fs::canonical(directory / "Sub").string());
    EXPECT_NE(SetCurrentDirectoryA(".."), 0);
    EXPECT_EQ(SetCurrentDirectoryA("file"), 0);
    EXPECT_EQ(GetCurrentDirectoryA(), fs::canonical(directory.path()).string());
    EXPECT_NE(SetCurrentDirectoryA("sub"), 0);
    fs::remove(directory / "Sub");
    EXPECT_EQ(GetCurrentDirectoryA(), "");
    EXPECT_NE(SetCurrentDirectoryA(before.c_str()), 0);
}
