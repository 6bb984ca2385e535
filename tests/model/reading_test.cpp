#include "databasetest.h"
#include "platform/system/faults.h"

namespace {

std::function<void()> meanwhile; // what another program does at each read

struct ReadingTest : DatabaseTest {
    ReadingTest() {
        put(0, "A", dataFile(0, "", {"a"}));
        diskFaultHook = [](DiskOperation operation) {
            if (operation == DiskOperation::read && meanwhile)
                meanwhile();
            return false;
        };
    }
    ~ReadingTest() override {
        diskFaultHook = nullptr;
        meanwhile = nullptr;
    }
    Texts unread() {
        Texts names;
        for (const Unread& thing : database->unread)
            names.push_back(thing.name);
        return names;
    }
    Texts namesIn(std::size_t fileclass) {
        Texts names;
        for (std::size_t i = 1; i < database->lists[fileclass]->files.size(); ++i)
            names.push_back(database->lists[fileclass]->files[i]->entryname);
        return names;
    }
};

} // namespace

TEST_F(ReadingTest, TakesWhatStaysAsItIsAndNothingElse) {
    int reads = 0;
    meanwhile = [&] {
        if (++reads == 5) // the file is open
            put(0, "A", dataFile(0, "", {"b", "c"}));
    };
    EXPECT_EQ(keysOf(*load().lists[0]->files[1]), (Texts{"b", "c"})) << "read once more";
    EXPECT_EQ(unread(), Texts());
    meanwhile = [&] { put(0, "A", dataFile(0, "", Texts(static_cast<std::size_t>(++reads % 7 + 1), "x"))); };
    load();
    meanwhile = nullptr;
    EXPECT_EQ(unread(), Texts{"DBASE/A.DBS"});
    EXPECT_TRUE(database->lists[0]->files[1]->unread);

    reads = 0;
    diskFaultHook = [](DiskOperation operation) {
        static int opens = 0;
        if (operation == DiskOperation::open && ++opens == 4) // of the file, after the searches
            meanwhile();
        return false;
    };
    meanwhile = [&] { std::filesystem::rename(root / "DBASE/A.DBS", root / "away"); };
    load();
    EXPECT_EQ(unread(), Texts{"DBASE/A.DBS"}) << "neither empty nor new";
}

TEST_F(ReadingTest, TakesWhatWasPassedOverForAFileThatHasGone) {
    put(3, "b", "damaged");
    std::filesystem::create_hard_link(root / "seq/b.DEF", root / "seq/D.DEF");
    put("seq/b.def", dataFile(3, "T", {"a"}));
    put(3, "c", dataFile(3, "T", {"a"}));
    load();
    EXPECT_EQ(namesIn(3), (Texts{"b.DEF", "c.DEF"}));
    EXPECT_EQ(database->getproblem(database->problemcount)->solve(1), 1);
    database->analyse();
    EXPECT_EQ(namesIn(3), (Texts{"b.def", "c.DEF", "D.DEF"}));
    EXPECT_EQ(unread(), Texts());
}

TEST_F(ReadingTest, LeavesOutWhatIsNeverChanged) {
    std::string odd = dataFile(0, "", {"a", "a"});
    odd[odd.size() - 65] = 62; // the capacity of the last field
    put(0, "B", odd);
    std::filesystem::rename(root / "DBASE/A.DBS", home / "A.DBS");
    std::filesystem::create_symlink(home / "A.DBS", root / "DBASE/A.DBS");
    load();
    EXPECT_EQ(unread(), Texts{"DBASE/A.DBS"});
    ASSERT_EQ(database->problemcount, 1);
    EXPECT_EQ(database->getproblem(1)->solve(2), 0);
    EXPECT_EQ(reports.size(), 1u);
    database->analyse();
    EXPECT_EQ(database->problemcount, 1);
    EXPECT_EQ(keysOf(*database->lists[0]->files[2]), (Texts{"a/#2", "a"}));
    EXPECT_EQ(database->ismodified(), 1);
}
