#include "platform/system/person.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tempdir.h"

namespace fs = std::filesystem;

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
