#include <random>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "changes/carryout.h"
#include "changes/place.h"
#include "changes/restore.h"
#include "files/binfile.h"
#include "reporting/report.h"
#include "tempdir.h"

namespace fs = std::filesystem;

namespace {

// A small database whose files hold nothing but key fields.
struct Changes : testing::Test {
    Changes() {
        setenv("XDG_STATE_HOME", state.path().c_str(), 1);
        setReport([this](const char* text, const char*, std::uint32_t) {
            return reports.emplace_back(text), answer;
        });
        fs::create_directories(root / "DBASE");
        for (const char* name : {"DBASE/A", "DBASE/B", "DBASE/C"})
            writeFile(root / name, field("one") + field("two") + std::string(200, *name));
        EXPECT_FALSE(tree->open(root.path()));
    }
    ~Changes() override { setReport({}); }

    static std::string field(const std::string& key) {
        std::string bytes;
        TSXbinfile::makefield(bytes, key, 61);
        return bytes;
    }
    std::string whole() const {
        std::string all;
        for (const std::string& name : listTree(root.path()))
            all += name + "\n" + (name.back() == '/' ? "" : readFile(root / name));
        return all;
    }
    FileState now(const std::string& name) {
        Entry entry;
        EXPECT_FALSE(tree->look(name, Links::followed, entry));
        return entry.state;
    }
    // A key, a deletion and a making.
    std::vector<Change> draft() {
        EXPECT_FALSE(tree->begin());
        std::vector<Change> group(3);
        std::vector<std::string> left;
        group[0].file = "DBASE/A";
        EXPECT_EQ(draftkeys(*tree, now("DBASE/A"), {{2, 69, "two", "another"}}, group[0], left), "");
        group[1] = deletionof("DBASE/B", {});
        EXPECT_FALSE(draftdeletion(*tree, now("DBASE/B"), group[1]));
        group[2] = makingof("DBASE/B2", FileState::plain, contentOf(std::string("made")));
        return group;
    }
    std::string commit(CommitOptions options = {}) {
        Committer committer(tree, options);
        std::vector<Failure> failures;
        std::vector<Change> group = draft();
        EXPECT_TRUE(committer.commit(group, failures));
        return committer.undopath();
    }
    RestoreResult bringBack(const std::string& undo) {
        return restore(tree, {.undofile = undo, .yes = true});
    }

    TempDir root, state;
    std::shared_ptr<Tree> tree = std::make_shared<Tree>();
    std::vector<std::string> reports;
    int answer = 7;
};

} // namespace

// Neither a byte nor the end can be another; what is refused changes nothing.
TEST_F(Changes, AreNotTakenBackByAFileDamagedAnywhere) {
    const std::string before = whole(), undo = commit(), after = whole(), sound = readFile(undo);
    EXPECT_NE(before, after);
    for (std::size_t i = 0; i < 2 * sound.size(); ++i) {
        std::string bytes = sound, why;
        bytes[i % sound.size()] = static_cast<char>(bytes[i % sound.size()] ^ (1 << i % 8));
        writeFile(undo, i < sound.size() ? bytes : sound.substr(0, i - sound.size()));
        EXPECT_NE(bringBack(undo).refused, "") << i;
    }
    EXPECT_EQ(whole(), after);
    writeFile(undo, sound);
    fs::permissions(undo, fs::perms(0620));
    EXPECT_NE(bringBack(undo).refused.find("others than its owner"), std::string::npos);
    fs::permissions(undo, fs::perms(0600));
    EXPECT_EQ(bringBack(undo).left.size(), 0U);
    EXPECT_EQ(whole(), before);
}

// Only the user can read them; the last ten of a database stay, others go with 30 days, but not by a clock
// that is far ahead of the newest.
TEST_F(Changes, AreKeptInPrivateAndForATime) {
    const fs::path place = state / "txinspect";
    const auto names = [&] { return listTree(place).size(); };
    for (int i = 0; i < 12; ++i) {
        const std::string undo = commit();
        EXPECT_EQ(fs::status(undo).permissions(), fs::perms(0600));
        EXPECT_EQ(bringBack(undo).left.size(), 0U);
    }
    EXPECT_EQ(fs::status(place).permissions(), fs::perms(0700));
    EXPECT_EQ(names(), 24U);
    for (const std::string& name : listTree(place)) // all of long ago, as a clock far ahead would have it
        fs::rename(place / name, place / ("20010101" + name.substr(8)));
    const std::string undo = commit();
    EXPECT_EQ(names(), 25U);
    bringBack(undo);
    EXPECT_EQ(names(), 10U);
    fs::permissions(place, fs::perms(0700));
    fs::remove_all(place);
    writeFile(place, "in the way");
    Committer refused(tree, {}), asked(tree, {.ask = true});
    std::vector<Change> group = draft();
    std::vector<Failure> failures;
    EXPECT_FALSE(refused.commit(group, failures));
    answer = 6; // Yes
    EXPECT_TRUE(asked.commit(group, failures));
    EXPECT_EQ(reports.size(), 2U);
}

// Gigabytes that are holes take neither memory nor space, and come back.
TEST_F(Changes, OfAHugeFileComeBack) {
    const std::string big = root / "DBASE/B";
    const int file = open(big.c_str(), O_RDWR);
    ASSERT_EQ(pwrite(file, "end", 3, std::int64_t{5} << 30), 3);
    ASSERT_EQ(ftruncate(file, (std::int64_t{5} << 30) + 4096), 0);
    close(file);
    const std::string undo = commit();
    EXPECT_LT(fs::file_size(undo), 1000000U);
    EXPECT_FALSE(fs::exists(big));
    EXPECT_EQ(bringBack(undo).left.size(), 0U);
    EXPECT_EQ(fs::file_size(big), (std::uintmax_t{5} << 30) + 4096);
    struct stat found = {};
    ASSERT_EQ(stat(big.c_str(), &found), 0);
    EXPECT_LT(found.st_blocks, 2000);
}

// Each byte one of before or of after is torn; any other byte is somebody's, and stays.
TEST_F(Changes, AreToldFromForeignBytes) {
    Change change;
    const std::string before = field("before"), after = field("after");
    addfield(change, 1, 0, before, after);
    Decoder from(change.fields);
    const KeyField field = readfield(from);
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        std::string mixed = before;
        for (std::size_t at = 0; at < mixed.size(); ++at)
            mixed[at] = random() % 2 == 0 ? before[at] : after[at];
        const Standing wanted = mixed == before  ? Standing::before
                                : mixed == after ? Standing::after
                                                 : Standing::torn;
        EXPECT_EQ(standingof(mixed, field), wanted);
        mixed[random() % mixed.size()] = '\xEE';
        EXPECT_EQ(standingof(mixed, field), Standing::other);
    }
    EXPECT_EQ(standingof(before.substr(0, 40), field), Standing::torn); // the file ends in it
}
