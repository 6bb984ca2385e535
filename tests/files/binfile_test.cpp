#include "files/binfile.h"

#include "databasetest.h"

// What no reader or writer of a database comes to.
TEST_F(DatabaseTest, BinFileTellsEveryMisuseAndFailure) {
    startLog(1, root.path().c_str());
    const std::string name = root / "file", log = root / "TXLOG.TXT", head = readFile(log);
    std::string text, expected;
    std::int32_t number = 7;
    char byte = 0;
    TSXbinfile file;
    Tree tree;
    EXPECT_FALSE(tree.open(root.path()));
    const auto expect = [&](const Texts& lines) {
        for (const std::string& line : lines)
            expected += "Local error: TSXbinfile: " + line + "\n";
        EXPECT_EQ(readFile(log), head + expected);
    };
    file.close();
    EXPECT_EQ(file.blockwrite("x", 1), 0);
    EXPECT_EQ(file.openread(tree, name.c_str()), 0);
    EXPECT_EQ(file.readint(number), 0);
    expect({"tried to close closed file", "tried to blockwrite to closed file ???",
            "Could not open file " + name, "tried to blockread from closed file ???",
            "could not read int from ???"});
    writeFile(name, "abc");
    EXPECT_EQ(file.openread(tree, name.c_str()), 1);
    EXPECT_EQ(file.openread(tree, "elsewhere"), -1);
    for (const int count : {0, -1}) {
        EXPECT_EQ(file.blockread(&byte, count), 0);
        EXPECT_EQ(file.blockwrite("x", count), 0);
    }
    EXPECT_EQ(file.blockread(&byte, 1), 1);
    EXPECT_EQ(file.iseof(), 0);
    EXPECT_EQ(file.readint(number), 0);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(file.iseof(), 1);
    EXPECT_EQ(file.writeint(1), 0);
    EXPECT_EQ(file.writestring("x"), 0);
    expect({"tried to open opened file", "could not read int from " + name, "could not write int to " + name,
            "could not write string to " + name});
    file.close();
    EXPECT_EQ(file.readstring(text, 100), 0);
    expect(
        {"tried to blockread from closed file " + name, "could not read string from " + name + " (0 0 0)"});
    text = "of before";
    writeFile(name, integer(0));
    EXPECT_EQ(file.openread(tree, name.c_str()) + file.readstring(text, 100), 2);
    EXPECT_EQ(text, "");
    file.close();
    { EXPECT_EQ(TSXbinfile().openread(tree, name.c_str()), 1); }
    expect({"file not closed"});
    startLog(0, "");
}
