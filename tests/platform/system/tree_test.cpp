#include "platform/system/tree.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/system/faults.h"
#include "tempdir.h"

namespace fs = std::filesystem;

namespace {

constexpr Failure none, missing{ERROR_FILE_NOT_FOUND}, noDirectory{ERROR_PATH_NOT_FOUND},
    denied{ERROR_ACCESS_DENIED}, exists{ERROR_ALREADY_EXISTS}, nowhere{ERROR_CANT_RESOLVE_FILENAME},
    another{ERROR_FILE_INVALID};

struct TreeTest : testing::Test {
    TreeTest() {
        fs::create_directories(top + "/DBase");
        fs::create_directory(directory / "out");
        for (const char* file : {"db/DBase/File", "db/DBase/fiLE", "out/File"})
            writeFile(directory / file, file);
        const char* links[][2] = {
            {"in", "DBase"},         {"round", "../db/DBase"},      {"out", "../out"},  {"upper", "DBASE"},
            {"dangling", "nowhere"}, {"DBase/leak", "../out/File"}, {"loop", "loop/x"}, {"farther", "out"},
        };
        for (const auto& [name, target] : links)
            fs::create_symlink(target, top + "/" + name);
        fs::create_symlink(top + "/DBase", top + "/back");
        mkfifo((top + "/pipe").c_str(), 0600);
        EXPECT_EQ(tree.open(directory / "DB"), none);
    }
    // What is read below the name.
    std::string read(const char* name) {
        File file;
        std::string bytes;
        const Failure failure = tree.openToRead(name, file);
        return failure || file.read(0, 100, bytes) ? std::to_string(failure.number) : bytes;
    }
    Entry look(const char* name, Links links = Links::unfollowed) {
        Entry entry;
        EXPECT_EQ(tree.look(name, links, entry), none) << name;
        return entry;
    }
    std::vector<std::string> names(const char* name) {
        std::vector<std::string> found;
        EXPECT_EQ(tree.names(name, found), none);
        return found;
    }
    TempDir directory;
    std::string top = directory / "db";
    Tree tree;
};

} // namespace

TEST_F(TreeTest, WalksEveryNameAndKnowsWhatIsInside) {
    const struct {
        const char* name;
        const char* spelled;
        const char* content; // or the failure
        const char* outside;
    } cases[] = {
        {"DBase/fiLE", "DBase/fiLE", "db/DBase/fiLE", ""},
        {"dbase\\FILE", "DBase/File", "db/DBase/File", ""}, // the first of two
        {"in/File", "in/File", "db/DBase/File", ""},
        {"back//file", "back/File", "db/DBase/File", ""}, // an absolute link that leads back
        {"round/../DBASE/./FILE", "round/../DBase/File", "db/DBase/File", ""},
        {"../out/../db/DBASE/FILE", "../out/../db/DBase/File", "db/DBase/File", ""},
        {"out/FILE", "out/File", "out/File", "out"},
        {"farther/File", "farther/File", "out/File", "farther"},
        {"../out/File", "../out/File", "out/File", ".."},
        {"DBase/LEAK", "DBase/leak", "out/File", ""}, // the link itself is inside
        {"upper/File", "upper/File", "1921", ""},     // the letters in a link are as they stand
        {"dangling", "dangling", "1921", ""},
        {"loop", "loop", "1921", ""},
        {"DBASE/New/x", "DBase/New/x", "3", ""},
        {"DBASE/FILE/x", "DBase/File/x", "3", ""},
        {"DBASE/new", "DBase/new", "2", ""},
        {"pipe", "pipe", "5", ""},
        {"DBASE/", "DBase", "5", ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(read(c.name), c.content) << c.name;
        Entry entry;
        const Failure failure = tree.look(c.name, Links::unfollowed, entry);
        EXPECT_TRUE(!failure || failure == nowhere) << c.name;
        EXPECT_EQ(entry.name, c.spelled) << c.name;
        EXPECT_EQ(entry.outside, c.outside) << c.name;
    }
    EXPECT_EQ(Tree().open(directory / "none"), noDirectory);
    EXPECT_EQ(look("round", Links::followed).state, look("DBase").state);
    EXPECT_EQ(look("farther", Links::followed).outside, "farther");
    EXPECT_EQ(names("back"), (std::vector<std::string>{"File", "fiLE", "leak"}));
}

TEST_F(TreeTest, ChangesNothingOutside) {
    const auto before = listTree(directory.path());
    File file;
    NewFile made;
    for (const std::string place : {"out/", "farther/", "../out/", "back/../../out/"}) {
        EXPECT_EQ(tree.openToWrite(place + "File", file), denied) << place;
        EXPECT_EQ(tree.make(place + "new", made), denied) << place;
        EXPECT_EQ(tree.makeDirectory(place + "new"), denied) << place;
        EXPECT_EQ(tree.makeLink(place + "new", "x"), denied) << place;
        EXPECT_EQ(tree.addName(place + "new", "DBase/File"), denied) << place;
        EXPECT_EQ(tree.addName("DBase/new", place + "File"), denied) << place;
        EXPECT_EQ(tree.openEntry(place + "File", file), denied) << place;
        EXPECT_EQ(tree.remove(place + "File", look((place + "File").c_str()).state), denied) << place;
        EXPECT_EQ(tree.removeDirectory(place + "."), denied) << place;
    }
    EXPECT_EQ(listTree(directory.path()), before);
}

// Whoever moves names meanwhile leads nothing elsewhere.
TEST_F(TreeTest, ActsOnWhatWasJudged) {
    const FileState judged = look("DBase/File").state;
    fs::rename(top + "/DBase", top + "/moved");
    fs::create_symlink("../out", top + "/DBase");
    EXPECT_EQ(read("DBase/File"), "db/DBase/File");
    look("DBase/File", Links::followed); // and is not taken for what is read next
    EXPECT_EQ(tree.begin(), none);
    EXPECT_EQ(read("DBase/File"), "out/File");
    EXPECT_EQ(tree.remove("DBase/File", judged), denied);
    EXPECT_EQ(tree.remove("moved/fiLE", judged), another);
    EXPECT_EQ(tree.remove("moved/File", judged), none);
    EXPECT_EQ(tree.remove("moved/none", judged), missing);

    fs::rename(top, directory / "away");
    fs::create_directory(top);
    EXPECT_EQ(tree.begin(), noDirectory);
    EXPECT_EQ(read("moved/fiLE"), "3");
    EXPECT_EQ(tree.makeDirectory("new"), noDirectory);
    fs::remove(top);
    fs::rename(directory / "away", top);
    EXPECT_EQ(tree.begin(), none);
    EXPECT_EQ(read("moved/fiLE"), "db/DBase/fiLE");
}

TEST_F(TreeTest, GoesByWhatIsPlanned) {
    EXPECT_EQ(tree.planRemoval("dbase/File", look("DBase/File").state), none);
    EXPECT_EQ(tree.planRemoval("DBase/leak", look("DBase/File").state), another);
    EXPECT_EQ(tree.planRemoval("in/File", look("back/File").state), none) << "the other one, by its letters";
    EXPECT_EQ(tree.planDirectory("NEW"), none);
    EXPECT_EQ(tree.planDirectory("new"), exists);
    EXPECT_EQ(tree.planDirectory("New/sub"), none);
    for (int begins = 0; begins < 2; ++begins) {
        EXPECT_EQ(names("DBase"), std::vector<std::string>{"leak"});
        EXPECT_EQ(read("back/file"), "2");
        EXPECT_EQ(look("NEW/Sub").name, "NEW/sub");
        EXPECT_EQ(tree.enter("new"), none);
        EXPECT_EQ(names("new/sub"), std::vector<std::string>());
        EXPECT_EQ(tree.begin(), none);
    }
    EXPECT_TRUE(fs::exists(top + "/DBase/fiLE"));
}

TEST_F(TreeTest, MakesWhatShowsWholeWithTheRightsOfItsDirectory) {
    const std::string place = top + "/DBase";
    chmod(place.c_str(), 02770);
    EXPECT_TRUE(geteuid() != 0 || chown(place.c_str(), 1234, 4321) == 0);
    struct stat state = {};
    const auto mode = [&](const char* name) {
        EXPECT_EQ(lstat((place + "/" + name).c_str(), &state), 0) << name;
        EXPECT_TRUE(geteuid() != 0 || (state.st_uid == 1234 && state.st_gid == 4321)) << name;
        return state.st_mode & 07777;
    };
    const auto make = [&](const char* name) {
        NewFile made;
        EXPECT_EQ(tree.make(std::string("DBASE/") + name, made), none);
        EXPECT_EQ(made.file.write(0, name), none);
        EXPECT_FALSE(fs::exists(place + "/" + name));
        return made.keep();
    };
    NewFile dropped;
    EXPECT_EQ(tree.make("DBase/dropped", dropped), none);
    EXPECT_EQ(make("FILE"), none) << "beside names in other letters";
    EXPECT_EQ(tree.standsAlone("DBase/FILE"), exists);
    EXPECT_EQ(mode("FILE"), 0660u);
    EXPECT_EQ(tree.makeDirectory("DBase/sub"), none);
    EXPECT_EQ(tree.makeDirectory("DBase/SUB"), exists);
    EXPECT_EQ(mode("sub"), 02770u);
    const std::string list(
        "\2\0\0\0\1\0\6\0\xff\xff\xff\xff\4\0\4\0\xff\xff\xff\xff\40\0\0\0\xff\xff\xff\xff", 28);
    ASSERT_EQ(setxattr(place.c_str(), "system.posix_acl_default", list.data(), list.size(), 0), 0);
    EXPECT_EQ(make("listed"), none);
    EXPECT_EQ(mode("listed"), 0640u) << "as the default list says";
    diskFaultHook = [](DiskOperation operation) { return operation == DiskOperation::sync; };
    EXPECT_NE(make("unsynced"), none);
    diskFaultHook = nullptr;

    FileState given = look("DBase/listed").state;
    given.permissions = 06440;
    given.owner = getuid();
    given.changed = {1000, 5};
    ASSERT_EQ(setxattr((place + "/listed").c_str(), "user.odd", "", 0, 0), 0);
    File listed;
    EXPECT_EQ(tree.openEntry("DBase/listed", listed), none);
    EXPECT_EQ(listed.give(given, {{"user.note", "x"}, {"security.capability", "x"}}), none);
    const FileState now = look("DBase/listed").state;
    EXPECT_EQ(now.permissions, 0440u);
    EXPECT_EQ(now.owner, getuid());
    EXPECT_EQ(now.changed, given.changed);
    std::vector<Attribute> attributes;
    EXPECT_EQ(listed.attributes(attributes), none);
    EXPECT_EQ(attributes.size(), 2u);
    EXPECT_NE(File().attributes(attributes), none);
    EXPECT_EQ(names("DBase"), (std::vector<std::string>{"FILE", "File", "fiLE", "leak", "listed", "sub"}));
}
