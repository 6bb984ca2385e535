#include "databasetest.h"

namespace {

class Analyse : public DatabaseTest {
protected:
    Texts visible() const {
        Texts keys;
        for (int i = 1; i <= database->visiblecount; ++i)
            keys.push_back(database->getvisiblekey(i)->key);
        return keys;
    }
};

} // namespace

TEST_F(Analyse, ListsEveryKindInItsOrder) {
    put(0, "A", dataFile(0, "", {"twice", "", "lone", "TWICE"}));
    put(0, "B", dataFile(0, "", {""}));
    put(0, "C", counted("TX-DBS-v1.0"));
    put(0, "D", counted("TX-DBS-v1.0") + frame("ENT", 0) + integer(1) + field("hidden") + "junk!");
    put(1, "A", dataFile(1, "G", {"twice", "", "", "orphan"}));
    put(1, "B", counted("GEL-DEF-v1.0"));
    put(2, "A", "");
    put(3, "A", dataFile(3, "S", {"orphan", "zebra", "Orphan"}));
    for (const char* name : {"B", "C"})
        put(3, name, counted("SEQ-DEF-v1.0"));
    put(5, "A", dataFile(5, "D", {"lone"}));
    put(5, "B", dataFile(5, "D", {"LONE"}));
    put(5, "C", "bad");
    put("seq/x.CNF", "");
    put("x.CMP", "");
    for (const char* name : {"bundles", "images"})
        std::filesystem::remove(root / name);
    load();
    const Texts expected = {"7/0 ROOT/seq/x.CNF",
                            "7/0 ROOT/./x.CMP",
                            "5/1 ROOT\\images",
                            "5/1 ROOT\\bundles",
                            "6/0 D",
                            "6/2 A",
                            "6/5 C",
                            "1/0 ",
                            "1/1 ",
                            "1/3 ",
                            "2/0 ",
                            "3/0 ",
                            "2/2 ",
                            "2/3 ",
                            "4/0 "};
    EXPECT_EQ(problems(), expected);
    EXPECT_EQ(visible(), (Texts{"", "lone", "orphan", "twice", "zebra"}));
    EXPECT_EQ(database->keytotal, 5) << "an invalid file is not in the index";
    EXPECT_EQ(database->getproblem(5)->fileindex, 4);
    EXPECT_EQ(database->gettype(0)->filecount, 6) << "three of the class and three without a type";
    EXPECT_EQ(database->gettype(0)->entrycount, 5);
    EXPECT_TRUE(database->getproblem(0) == nullptr && database->getproblem(16) == nullptr);

    // Data files are read once; side files and directories are looked at anew.
    std::filesystem::remove(root / "DBASE/A.DBS");
    database->showallkeys();
    database->analyse();
    EXPECT_EQ(problems(), expected);
    EXPECT_EQ(visible().size(), 5u);
    std::filesystem::remove(root / "x.CMP");
    std::filesystem::create_directory(root / "images");
    database->analyse();
    EXPECT_EQ(database->problemcount, 13);
}

TEST_F(Analyse, WhatIsNoFault) {
    put(0, "A", dataFile(0, "", {"a", ""}));
    put(1, "A", dataFile(1, "G", {"a", "", ""}));
    put(1, "B", dataFile(1, "G", {""}));
    put(2, "A", dataFile(2, "C", {"A", ""}));
    load();
    EXPECT_EQ(problems(), Texts());
    EXPECT_EQ(visible(), Texts());
    const TSXkeyentry& blank = *database->keyarray[1];
    EXPECT_EQ(blank.occurrences(0) * 100 + blank.occurrences(1) * 10 + blank.occurrences(2), 131);
    EXPECT_EQ(blank.occurrence(1, 2).record, 3) << "in the order of files and records";
    EXPECT_EQ(blank.occurrence(1, 3).file, &file(1, 2));
}
