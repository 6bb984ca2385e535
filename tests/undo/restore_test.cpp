#include "undo/undotest.h"

struct Restores : UndoTest {};

TEST_F(Restores, TakesBackWhatOneRunHasChangedTwice) {
    const Snapshot before = snapshot(root.path());
    UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse);
    for (int save = 0; save < 3; ++save) {
        std::vector<Change> group;
        while (group.empty())
            addKeys(group, "DBASE/F1.DBS");
        ASSERT_TRUE(change(keeper, group));
    }
    EXPECT_EQ(bringBack(keeper.path()).left, Texts());
    EXPECT_EQ(differences(snapshot(root.path()), before), Texts());
}

// Neither a byte nor the end can be another; what is refused changes nothing, and neither does a journal.
TEST_F(Restores, RefusesAFileDamagedAnywhere) {
    UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse);
    ASSERT_TRUE(change(keeper, {{Change::deletion, "DBASE/F0.DBS", 0, 0, "", "", ""},
                                {Change::making, "DBASE/N1", 0, 0, "", "", ""}}));
    const std::string whole = readFile(keeper.path());
    for (std::size_t i = 0; i < 2 * whole.size(); ++i) {
        std::string bytes = whole;
        bytes[i % whole.size()] = static_cast<char>(bytes[i % whole.size()] ^ (1 << pick(8)));
        writeFile(keeper.path(), i < whole.size() ? bytes : whole.substr(0, i - whole.size()));
        std::string why;
        EXPECT_EQ(recordedDirectory(keeper.path(), why), "") << i;
        EXPECT_NE(restore({keeper.path(), root.path(), true, true, ""}).refused, "") << i;
    }
    writeFile(keeper.path(), whole);
    EXPECT_TRUE(bringBack(keeper.path()).complete());
}

// A byte is another one and the checksum right: what is taken for sound leads nowhere else and fits.
TEST_F(Restores, ReadsNothingThatMakesNoSense) {
    std::vector<Change> group = {{Change::deletion, "DBASE/F0.DBS", 0, 0, "", "", ""},
                                 {Change::deletion, "seq/deep/again.CNF", 0, 0, "", "", ""},
                                 {Change::deletion, "seq/link.DEF", 0, 0, "", "", ""}};
    addKeys(group, "DBASE/F5.DBS");
    UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse);
    ASSERT_TRUE(change(keeper, group));
    const std::string whole = readFile(keeper.path());
    int refused = 0;
    for (std::size_t i = UndoHeader::size; i < whole.size(); ++i)
        for (const char byte : {'\0', '\1', '.', '/', '\x7F', '\xFF'}) {
            UndoFile file;
            file.bytes = whole;
            file.bytes[i] = byte;
            ASSERT_TRUE(file.header.decode(whole));
            file.header.checksum = checksumOf(std::string_view(file.bytes).substr(UndoHeader::size));
            file.bytes.replace(0, UndoHeader::size, file.header.encode());
            const bool sound = parseUndoFile(file).empty();
            refused += sound ? 0 : 1;
            for (std::size_t n = 0; sound && n < file.items.size(); ++n) {
                const UndoItem& item = file.items[n];
                EXPECT_EQ(fs::path("/x/" + item.file).lexically_normal().string(), "/x/" + item.file) << i;
                EXPECT_TRUE(item.state.size >= 0 && item.state.read.nanoseconds < 1000000000U) << i;
                for (const FieldChange& field : item.fields)
                    EXPECT_TRUE(field.offset >= 0 && field.before.length <= 69 && field.after.length <= 69);
            }
        }
    EXPECT_GT(refused, 1000);
}

// Only the user can read them; the last ten of a database stay, others go with 30 days, and nothing stands in
// the way.
TEST_F(Restores, KeepsUndoFilesPrivateAndForATime) {
    const std::vector<Change> group = {{Change::making, "DBASE/N1", 0, 0, "", "", ""}};
    for (int i = 0; i < 12; ++i) {
        UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse, i == 11 ? state / "own" : "");
        ASSERT_TRUE(keeper.before(group));
        keeper.after();
        struct stat found = {};
        lstat(keeper.path().c_str(), &found);
        EXPECT_EQ(found.st_mode & 0777, 0600U);
    }
    struct stat found = {};
    stat((state / "txinspect").c_str(), &found);
    EXPECT_EQ(found.st_mode & 0777, 0700U);
    EXPECT_EQ(listUndoFiles().size(), 12U);
    for (const std::string& path : undoFiles()) {
        UndoFile file;
        ASSERT_EQ(readUndoFile(path, file), "");
        file.header.time -= 31 * 24 * 60 * 60;
        writeFile(path, file.bytes.replace(0, UndoHeader::size, file.header.encode()));
    }
    UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse, state / "own");
    EXPECT_FALSE(keeper.before(group)); // something has that name
    UndoKeeper last(root.path(), UndoKeeper::WithoutPlace::refuse);
    EXPECT_TRUE(last.before(group));
    EXPECT_EQ(listUndoFiles().size(), 10U);
    EXPECT_EQ(undoFiles().back(), last.path());
    fs::permissions(state / "txinspect", fs::perms::none);
    fs::remove_all(state / "txinspect");
    writeFile(state / "txinspect", "in the way");
    UndoKeeper refused(root.path(), UndoKeeper::WithoutPlace::refuse),
        asked(root.path(), UndoKeeper::WithoutPlace::ask);
    EXPECT_FALSE(refused.before(group));
    answer = 6; // Yes
    EXPECT_TRUE(asked.before(group));
    EXPECT_EQ(reports.size(), 3U);
}
