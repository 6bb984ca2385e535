#include "platform/system/path.h"

#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "tempdir.h"

namespace fs = std::filesystem;

TEST(Path, IsTakenAsItStandsElseIgnoringCase) {
    TempDir directory;
    fs::create_directories(directory / "DBase/Sub");
    for (const char* name : {"DBase/File", "DBase/fiLE", "DBase/file", "DBase/Sub/x.DBS", "DBase/\xC4.DBS"})
        writeFile(directory / name, "");
    fs::create_symlink("nowhere", directory / "Dangling");
    const struct {
        const char* given;
        const char* found;
        bool exists;
    } cases[] = {
        {"DBase/file", "DBase/file", true},
        {"DBase\\fiLE", "DBase/fiLE", true},
        {"dbase/FILE", "DBase/File", true}, // the first of three
        {"DBASE\\sub//X.dbs", "DBase/Sub//x.DBS", true},
        {"DBASE/SUB/", "DBase/Sub/", true},
        {"DBASE/SUB/../FILE", "DBase/Sub/../File", true},
        {"DBASE/New/Sub/x.DBS", "DBase/New/Sub/x.DBS", false}, // what is missing keeps its name
        {"DBASE/FILE/x", "DBase/File/x", false},
        {"DANGLING", "Dangling", true},
        {"DBASE/\xC4.dbs", "DBase/\xC4.DBS", true},
        {"DBASE/\xE4.dbs", "DBase/\xE4.dbs", false}, // only the ASCII letters have a case
    };
    for (const auto& c : cases) {
        EXPECT_EQ(resolvePath(directory / c.given), directory / c.found);
        EXPECT_EQ(pathExists(directory / c.given), c.exists) << c.given;
    }
    EXPECT_EQ(resolvePath(""), "");
    EXPECT_FALSE(pathExists(""));
}

// The names that look-ups keep are never older than the directory, even when its time of modification is set
// back.
TEST(Path, LookUpsSeeEveryChange) {
    TempDir directory;
    writeFile(directory / "one", "");
    EXPECT_TRUE(pathExists(directory / "ONE")) << "read too soon after the change to be kept";
    writeFile(directory / "tWo", "");
    EXPECT_TRUE(pathExists(directory / "TWO"));

    struct stat state = {};
    ASSERT_EQ(stat(directory.path().c_str(), &state), 0);
    usleep(2200000);
    EXPECT_TRUE(pathExists(directory / "ONE")) << "kept from here on";
    fs::rename(directory / "one", directory / "three");
    fs::rename(directory / "tWo", directory / "two");
    const timespec times[] = {state.st_atim, state.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, directory.path().c_str(), times, 0), 0);
    EXPECT_TRUE(pathExists(directory / "THREE"));
    EXPECT_FALSE(pathExists(directory / "ONE"));
    EXPECT_TRUE(pathExists(directory / "TWO"));
}

TEST(Directory, IsMadeWhereNothingHasItsName) {
    TempDir directory;
    fs::create_directory(directory / "Sub");
    writeFile(directory / "File", "");
    fs::create_symlink("nowhere", directory / "dangling");
    const auto before = listTree(directory.path());
    for (const char* path : {"SUB", "file", "DANGLING", "missing/x", "File/x"})
        EXPECT_EQ(CreateDirectoryA((directory / path).c_str()), 0) << path;
    EXPECT_EQ(listTree(directory.path()), before);
    EXPECT_NE(CreateDirectoryA((directory / "SUB\\New").c_str()), 0);
    EXPECT_TRUE(fs::is_directory(directory / "Sub/New"));
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
    EXPECT_EQ(SetCurrentDirectoryA("missing"), 0);
    EXPECT_EQ(GetCurrentDirectoryA(), fs::canonical(directory.path()).string());
    EXPECT_NE(SetCurrentDirectoryA("sub"), 0);
    fs::remove(directory / "Sub");
    EXPECT_EQ(GetCurrentDirectoryA(), "");
    EXPECT_NE(SetCurrentDirectoryA(before.c_str()), 0);
}
