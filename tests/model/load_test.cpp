#include "databasetest.h"

namespace {

class Load : public DatabaseTest {};

} // namespace

TEST_F(Load, LogsEachStepOfASmallTree) {
    put(0, "b", dataFile(0, "", {"k1", ""}));
    put(1, "G", dataFile(1, "Gel", {"k1"}));
    put(2, "C", counted("PHEN-DEF-v1.0") + "junk here");
    put(3, "S", dataFile(3, "Seq", {"k1"}));
    put(4, "P", "");
    put(4, "Q", dataFile(4, "gel", {"50%"}));
    put(5, "D", dataFile(5, "2D", {"k1"}));
    put("fprint/ok.CNF", counted("GELTYPE-CNF-v1.0"));
    put("char/bad.cnf", counted("GELTYPE-CNF-v1.0"));
    std::filesystem::create_directory(root / "Library/L.LIB");
    put("Library/L.LIB/x.CMP", "TX-COMP-v1.0junk.");
    std::filesystem::create_symlink("nowhere", root / "Library/L.LIB/y.CMP");
    load();
    EXPECT_EQ(
        takeLog(),
        ">>>>>>>>>> Added new experiment type 0 Database\n"
        "*** Scanning dbase files at ROOT/DBASE/*.DBS ***\n   found dbase file 'b'\n  k1\n  \n"
        "*** Scanning gel files at ROOT/fprint/*.DEF ***\n   found gel file 'G'\n"
        ">>>>>>>>>> Added new experiment type 1 Gel\n  k1 | 1\n"
        "*** Scanning character files at ROOT/char/*.DEF ***\n   found character file 'C'\n"
        "Local error: TSXbinfile: could not read tag from ROOT/char/C.DEF (--junk --) 1\n"
        "*** Scanning seq files at ROOT/seq/*.DEF ***\n   found seq file 'S'\n"
        ">>>>>>>>>> Added new experiment type 3 Seq\n k1 | 2\n"
        "*** Scanning pairsim files at ROOT/matrix/*.DEF ***\n   found pair file 'P'\n"
        "Local error: TSXbinfile: could not read string from ROOT/matrix/P.DEF (0 0 0)\nInvalid file\n"
        "   found pair file 'Q'\n>>>>>>>>>> Added new experiment type 4 gel\n  50% | 3\n"
        "*** Scanning 2D gel files at ROOT/gel2d/*.DEF ***\n   found gel2d file 'D'\n"
        ">>>>>>>>>> Added new experiment type 5 2D\n k1 | 4\n"
        "*** Scanning corrupt files at ROOT/fprint/*.CNF ***\n   found file 'ROOT/fprint/ok.CNF'\n"
        "*** Scanning corrupt files at ROOT/char/*.CNF ***\n   found file 'ROOT/char/bad.cnf'\n"
        "        ! corrupt: invalid header\n"
        "*** Scanning corrupt files at ROOT/seq/*.CNF ***\n"
        "*** Scanning corrupt files at ROOT/matrix/*.CNF ***\n"
        "*** Scanning corrupt files at ROOT/gel2d/*.CNF ***\n"
        "*** Scanning corrupt files at ROOT/./*.CMP ***\n"
        "*** Scanning library directories at ROOT/Library/*.LIB ***\n"
        "*** Scanning corrupt files at ROOT/Library/L.LIB/*.CMP ***\n"
        "   found file 'ROOT/Library/L.LIB/x.CMP'\n"
        "Local error: TSXbinfile: could not read tag from ROOT/Library/L.LIB/x.CMP (--junk.--) 1\n"
        "        ! corrupt: invalid tag\n   found file 'ROOT/Library/L.LIB/y.CMP'\n"
        "Local error: TSXbinfile: Could not open file ROOT/Library/L.LIB/y.CMP\n"
        "   could not read 'Library/L.LIB/y.CMP': The name of the file cannot be resolved by the system.\n"
        "        ! corrupt: could not open\n");
    EXPECT_EQ(problems(), (Texts{"7/0 ROOT/char/bad.cnf", "7/0 ROOT/Library/L.LIB/x.CMP",
                                 "7/0 ROOT/Library/L.LIB/y.CMP", "6/2 C", "6/4 P", "4/0 "}));
    EXPECT_EQ(reports, Texts());
}

TEST_F(Load, TypesAreToldApartByClassAndNameAndEndAt200) {
    load();
    for (int i = 1; i <= 202; ++i)
        EXPECT_EQ(database->addexptype(2, ("t" + std::to_string(i)).c_str()), std::min(i, 200));
    for (const auto& [fileclass, name] : {std::pair(2, "T7"), {2, "t201"}, {3, "t7"}, {0, "Database"}})
        EXPECT_EQ(database->addexptype(fileclass, name), std::string(name) == "T7" ? 7 : 200);
    EXPECT_STREQ(database->gettype(200)->name, "t200");
    EXPECT_TRUE(database->gettype(-1) == nullptr && database->gettype(201) == nullptr);
}

TEST_F(Load, Takes3000FilesInTheirOrder) {
    for (int i = 3001; i >= 1; --i)
        put(0, Text<10>().format("f%04d", i).c_str(), "");
    std::filesystem::rename(root / "DBASE/f0002.DBS", root / "DBASE/F0002.dbs");
    std::filesystem::create_directory(root / "DBASE/f0003x.DBS");
    load();
    auto& list = static_cast<TSXdbslist&>(*database->lists[0]);
    EXPECT_EQ(list.newfile(), -1);
    EXPECT_EQ(list.count, 3000);
    EXPECT_EQ(std::string(file(0, 2).name) + file(0, 4).name.c_str() + file(0, 3000).name.c_str(),
              "F0002f0004f3000");
    EXPECT_EQ(database->unread.back().name, "DBASE/f3001.DBS");
    EXPECT_FALSE(database->picturecomplete());
    EXPECT_EQ(database->problemcount, 3000);
    EXPECT_EQ(database->getproblem(3000)->fileindex, 3000);
}

TEST_F(Load, NewFilesTakeTheLowestFreeName) {
    put(0, "dbsf001", dataFile(0, "", {"a"}));
    put(0, "DBSF003", dataFile(0, "", {"b"}));
    std::filesystem::create_directory(root / "DBASE/Dbsf004.dbs");
    put("DBASE/DBSF006", "no extension");
    load();
    put(0, "DBSF005", "came later");
    for (int i = 8; i <= 999; ++i)
        put(0, Text<10>().format("DBSF%03d", i).c_str(), "");
    for (const char* name : {"DBSF002", "DBSF006", "DBSF007", "DBSF1000"}) {
        const TSXdatafile& made = newFile({});
        EXPECT_STREQ(made.name, name);
        EXPECT_EQ(made.valid * 100 + made.ondisk * 10 + made.keycount, 100);
    }
    EXPECT_EQ(database->lists[0]->count, 6);
}
