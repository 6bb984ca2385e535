#include "files/finder.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tempdir.h"

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

TEST(Finder, PassesOverWhatALookUpWouldNotOpen) {
    TempDir directory;
    Tree tree;
    TSXfinder finder(tree);
    const auto search = [&](const char* pattern) {
        Names names;
        EXPECT_FALSE(tree.isOpen() ? tree.begin() : tree.open(directory.path()));
        for (int found = finder.findfirst(pattern); found != 0; found = finder.findnext())
            names.push_back(finder.entryname.c_str() +
                            std::string(finder.entrykind == TSXfinder::directory ? "/" : ""));
        return names;
    };
    const auto make = [&](const Names& names) {
        for (const std::string& name : names)
            writeFile(directory / name, "");
    };
    fs::create_directory(directory / "sub");
    make({"abc.DBS", "abc.dbs", "abc.Dbs", // the name with the pattern's extension is there
          "X.dbs", "x.dbs",                // of x.DBS the first of the two is opened
          "Y.DBS", "y.DBS",                // both are opened as they stand
          "z.dbs", "sub/file.DBS", "sub\\file.dbs", "sub\\other.DBS"});
    EXPECT_EQ(search("*.DBS"), (Names{"abc.DBS", "X.dbs", "Y.DBS", "y.DBS", "z.dbs"}));
    EXPECT_EQ(finder.passedover, (Names{"abc.Dbs", "abc.dbs", "sub\\file.dbs", "sub\\other.DBS", "x.dbs"}));
    EXPECT_EQ(search("s*s"), Names()) << "one part of a name can't match twice";
    fs::create_directory(directory / ".Sub");
    fs::create_symlink("sub", directory / "dirlink");
    fs::create_symlink("nowhere", directory / "dangling");
    EXPECT_EQ(search("d*"), (Names{"dangling", "dirlink/"}));
    EXPECT_EQ(search("*SUB"), (Names{".Sub", "sub/"})) << "first and hidden, so it counts as a file";
}
