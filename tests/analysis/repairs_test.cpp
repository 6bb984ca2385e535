#include "databasetest.h"
#include "platform/system/faults.h"

namespace {

class Repairs : public DatabaseTest {};

} // namespace

// A search from 2 on for each of them would not end in the time that a test has.
TEST_F(Repairs, ManyDuplicatesAndLongKeysThatDifferBehindTheCutAreRenamedInOnePass) {
    load();
    for (int i = 0; i < 150; ++i) {
        Texts keys(1000, "many");
        for (int r = 0; i >= 100 && r < 1000; ++r)
            keys[static_cast<std::size_t>(r)] =
                std::string(56, 's') + std::to_string(1000 + (i * 1000 + r) % 5000);
        newFile(keys);
    }
    const TSXdatafile& longest = newFile(Texts(12, std::string(60, 'l')));
    database->analyse();
    database->renameduplicates(0);
    EXPECT_EQ(database->lists[0]->files[100]->keys[1000], "many/#100000");
    EXPECT_EQ(longest.keys[10], std::string(55, 'l') + "/#10");
    database->analyse();
    EXPECT_EQ(database->problemcount, 0);
    EXPECT_EQ(database->keytotal, 150012);
}

TEST_F(Repairs, FilesBeyondTheLimitAreNotReadAndOrphansWithoutRoomStayAProblem) {
    for (int i = 1; i <= 3001; ++i)
        writeFile(root / Text<20>().format("DBASE/f%04d.DBS", i).c_str(), "");
    load();
    TSXfilelist& list = *database->lists[0];
    EXPECT_EQ(list.count, 3000);
    EXPECT_STREQ(list.files[3000]->name, "f3000");
    list.removeat(1);
    Texts orphans;
    for (int i = 0; i < 101; ++i)
        orphans.push_back("o" + std::to_string(1000 + i));
    list.removeat(1);
    newFile(orphans, database->addexptype(1, "T"));
    database->analyse();
    database->adddatabaseentries();
    EXPECT_EQ(list.count, 3000);
    EXPECT_EQ(list.files[3000]->keycount, 100);
    EXPECT_EQ(list.newfile(), -1);
    database->analyse();
    EXPECT_EQ(database->getproblem(database->problemcount)->kind, orphankeys);
    EXPECT_EQ(database->visiblecount, 1);
}

// Between the load and the repair another program changes, takes away, replaces and diverts.
TEST_F(Repairs, NothingIsDeletedOrWrittenThatIsNotAsItWasLookedAt) {
    const TempDir outside;
    std::filesystem::remove(root / "matrix");
    std::filesystem::create_directory_symlink(outside.path(), root / "matrix");
    for (const auto& [fileclass, name] : {std::pair(2, "A"), {2, "B"}, {3, "A"}, {3, "B"}, {4, "A"}})
        put(fileclass, name, "corrupt");
    const std::string content = dataFile(0, "", {"twice", "twice"});
    for (const char* name : {"A", "B", "C", "D", "E", "F"})
        put(0, name, content);
    load();
    writeFile(root / "seq/A.DEF", "changed");
    std::filesystem::remove(root / "seq/B.DEF");
    std::string results;
    for (int row = 1; database->getproblem(row)->kind == corruptdatafile; ++row)
        results += std::to_string(database->getproblem(row)->solve(1));
    EXPECT_EQ(results, "11010"); // one that has gone is what was asked for
    EXPECT_TRUE(std::filesystem::is_empty(root / "char"));
    EXPECT_EQ(readFile(root / "seq/A.DEF") + readFile(outside / "A.DEF"), "changedcorrupt");
    database->renameduplicates(0);
    const std::string other = std::string(content).replace(content.size() - 60, 1, "T"); // in the second key
    put(0, "B", other);
    std::filesystem::rename(root / "DBASE/C.DBS", outside / "C.DBS");
    put(0, "C", content);
    std::filesystem::rename(root / "DBASE/D.DBS", outside / "D.DBS");
    std::filesystem::create_symlink(outside / "D.DBS", root / "DBASE/D.DBS");
    for (const char* name : {"DBASE/E.DBS", "DBASE/F.DBS"})
        std::filesystem::remove(root / name);
    newFile({"new"});
    static const std::string twin = root / "DBASE/dbsf001.dbs"; // which appears while ours is made
    diskFaultHook = [](DiskOperation kind) { return kind == DiskOperation::link && !std::ofstream(twin); };
    reports.clear();
    EXPECT_EQ(database->saveall(), 0);
    EXPECT_EQ(readFile(root / "DBASE/A.DBS"), content) << "a part was saved without a question";
    answer = IDYES;
    EXPECT_EQ(database->saveall(), 0);
    diskFaultHook = nullptr;
    EXPECT_EQ(reports.size(), 3u) << "two questions, and what was in the way of the new file";
    EXPECT_TRUE(std::ranges::none_of(database->changes, [](const Change& change) {
        return change.kind == Change::making;
    })) << "the new file that was taken away again is told as made";
    EXPECT_TRUE(std::filesystem::exists(twin) && !std::filesystem::exists(root / "DBASE/DBSF001.DBS"));
    EXPECT_NE(readFile(root / "DBASE/A.DBS"), content);
    for (const std::string& path : {root / "DBASE/C.DBS", outside / "D.DBS"})
        EXPECT_EQ(readFile(path), content);
    EXPECT_EQ(readFile(root / "DBASE/B.DBS").substr(other.size() - 69), other.substr(other.size() - 69));
}

TEST_F(Repairs, AKeyIsChangedWhereNothingIsInTheWay) {
    load();
    newFile({"a", "b", "c"});
    TSXdatafile& experiments = newFile({"a", "a", "b"}, database->addexptype(1, "T"));
    database->analyse();
    TSXkeyentry &a = database->findoraddkey("a"), &b = database->findoraddkey("b");
    const std::string tooLong(61, 'x'), question = "Warning 52: This experiment exists already. Continue?";
    const struct {
        int type, n, answer;
        std::string text;
        int result;
        std::string report;
    } rows[] = {
        {0, 1, IDYES, tooLong, -1,
         "Error 48: The new key is too long: a key has at most 60 bytes. Nothing was changed"},
        {0, 2, IDYES, "new", -1, ""},
        {2, 1, IDYES, "new", -1, ""},
        {1, 1, IDCANCEL, "b", -1, question},
        {1, 1, IDYES, "B", 1, question},
        {1, 1, IDNO, "c", 1, ""}, // in use in another type alone
    };
    for (const auto& row : rows) {
        answer = row.answer;
        reports = {""};
        EXPECT_EQ(database->changekey(a, row.type, row.n, row.text.c_str()), row.result) << row.text;
        EXPECT_EQ(reports.back(), row.report);
        EXPECT_EQ(database->keytotal, 3) << "a refusal adds no key";
    }
    EXPECT_EQ(keysOf(experiments), (Texts{"B", "c", "b"}));
    EXPECT_EQ(b.occurrence(1, 1).record, 3);
    EXPECT_EQ(b.occurrence(1, 2).record, 1);
    EXPECT_EQ(database->renamekey(b, tooLong.c_str()), -1);
    experiments.keyreading[3] = Reading::ended;
    EXPECT_EQ(database->changekey(b, 1, 1, "d"), -1) << "a record that could not be read";
    database->committer = std::make_unique<Committer>(database->tree, CommitOptions{});
    static int links; // the first makes the undo file, and in the next run announces the change
    for (const std::uint32_t kept : {0U, 1U}) {
        links = 0;
        diskFaultHook = [](DiskOperation kind) { return kind == DiskOperation::link && ++links > 1; };
        EXPECT_EQ(database->saveall(), 0);
        EXPECT_EQ(database->committer->groups(), kept) << "what was refused stays in the undo file";
    }
    EXPECT_TRUE(database->changes.empty()) << "a new file that failed is told as made";
    links = 0;
    diskFaultHook = [](DiskOperation kind) {
        links += kind == DiskOperation::link ? 1 : 0;
        return kind == DiskOperation::sync && links > 1;
    };
    for (int earlier = 0; earlier < 2; ++earlier) {
        EXPECT_EQ(database->saveall(), 0);
        EXPECT_TRUE(database->committer->isopen());
    }
    diskFaultHook = nullptr;
    EXPECT_EQ(database->saveall(), 1);
}
