#include "platform/system/filesearch.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/system/tree.h"
#include "tempdir.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

struct FileSearchTest : testing::Test {
    Names search(const std::string& pattern) {
        Names names;
        WIN32_FIND_DATAA data;
        Tree tree;
        EXPECT_FALSE(tree.open(directory.path()));
        const FindHandle handle = FindFirstFileA(tree, pattern, data, passedOver);
        for (bool found = handle != nullptr; found; found = FindNextFileA(handle, data) != 0) {
            names.push_back(data.cFileName);
            attributes.push_back(data.dwFileAttributes);
        }
        FindClose(handle);
        return names;
    }
    void make(const Names& names) {
        for (const std::string& name : names)
            writeFile(directory / name, "");
    }

    TempDir directory;
    Names passedOver;
    std::vector<std::uint32_t> attributes;
};

} // namespace

TEST_F(FileSearchTest, PassesOverWhatALookUpWouldNotOpen) {
    fs::create_directory(directory / "sub");
    make({"abc.DBS", "abc.dbs", "abc.Dbs", // the name with the pattern's extension is there
          "X.dbs", "x.dbs",                // of x.DBS the first of the two is opened
          "Y.DBS", "y.DBS",                // both are opened as they stand
          "z.dbs", "sub/file.DBS", "sub\\file.dbs", "sub\\other.DBS"});
    EXPECT_EQ(search("*.DBS"), (Names{"abc.DBS", "X.dbs", "Y.DBS", "y.DBS", "z.dbs"}));
    EXPECT_EQ(passedOver, (Names{"abc.Dbs", "abc.dbs", "sub\\file.dbs", "sub\\other.DBS", "x.dbs"}));
}

TEST_F(FileSearchTest, TellsAttributes) {
    make({".hidden", "readonly", "x"});
    fs::permissions(directory / "readonly", fs::perms(0444));
    fs::create_directory(directory / "sub");
    fs::create_symlink("sub", directory / "dirlink");
    fs::create_symlink("nowhere", directory / "dangling");
    EXPECT_EQ(search("x*x"), Names()) << "one part of a name can't match twice";
    EXPECT_EQ(search("*"), (Names{".hidden", "dangling", "dirlink", "readonly", "sub", "x"}));
    EXPECT_EQ(attributes, (std::vector<std::uint32_t>{FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_NORMAL,
                                                      FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_READONLY,
                                                      FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_NORMAL}));
}
