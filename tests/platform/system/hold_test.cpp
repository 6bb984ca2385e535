#include "platform/system/hold.h"

#include <csignal>

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/stat.h>

#include "child.h"
#include "platform/system/bytestream.h"
#include "platform/system/tree.h"
#include "tempdir.h"

namespace {

struct Hold : testing::Test {
    std::uint32_t take() {
        Tree tree;
        std::string name;
        EXPECT_FALSE(tree.openDirectoryOf(marker, name));
        const HANDLE taken = CreateFileA(tree, name);
        handle = taken != INVALID_HANDLE_VALUE ? taken : handle;
        return errorOf(taken != INVALID_HANDLE_VALUE);
    }
    // In another process, which ends without giving up what it got.
    int takeElsewhere() {
        return inChild([&] { return static_cast<int>(take()); });
    }

    TempDir directory;
    std::string marker = directory / "open_db.txf";
    HANDLE handle = INVALID_HANDLE_VALUE;
};

} // namespace

TEST_F(Hold, KeepsOthersOffUntilItIsGivenUpOrItsProcessEnds) {
    writeFile(marker, "content");
    ASSERT_EQ(take(), 0u);
    EXPECT_EQ(takeElsewhere(), 32);
    EXPECT_EQ(take(), ERROR_SHARING_VIOLATION) << "nor can this process have it twice";
    EXPECT_TRUE(ByteStream().open(marker.c_str(), OpenMode::read));
    EXPECT_EQ(takeElsewhere(), ERROR_SHARING_VIOLATION) << "another use of the file ended";
    marker = directory / "OPEN_DB.TXF";
    EXPECT_EQ(takeElsewhere(), ERROR_SHARING_VIOLATION);
    CloseHandle(handle);
    EXPECT_EQ(takeElsewhere(), 0);
    EXPECT_EQ(take(), 0u);
    CloseHandle(handle);
    EXPECT_EQ(readFile(directory / "open_db.txf"), "content");
}

TEST_F(Hold, MayBeTakenByWhomTheDirectoryBelongsTo) {
    for (const auto& [place, made] : {std::pair(0755, 0600), {0775, 0660}, {0777, 0666}}) {
        std::filesystem::permissions(directory.path(), std::filesystem::perms(place));
        std::filesystem::remove(marker);
        const mode_t before = umask(022);
        ASSERT_EQ(take(), 0u);
        umask(before);
        CloseHandle(handle);
        EXPECT_EQ(std::filesystem::status(marker).permissions(), std::filesystem::perms(made));
    }
}

// Somebody tidies up, or puts something else in its place.
TEST_F(Hold, IsLookedAtAnew) {
    Tree tree;
    ASSERT_FALSE(tree.open(directory.path()));
    ASSERT_EQ(take(), 0u);
    EXPECT_FALSE(holdStands(handle, tree, "open_db.txf"));
    std::filesystem::remove(marker);
    EXPECT_FALSE(holdStands(handle, tree, "open_db.txf"));
    EXPECT_EQ(takeElsewhere(), ERROR_SHARING_VIOLATION) << "made and held anew";
    std::filesystem::rename(marker, directory / "away");
    writeFile(marker, "");
    EXPECT_EQ(holdStands(handle, tree, "open_db.txf").number, ERROR_FILE_INVALID);
    CloseHandle(handle);
    std::filesystem::remove(marker);
    std::filesystem::create_symlink("away", marker);
    EXPECT_NE(take(), 0u);
    EXPECT_FALSE(std::filesystem::exists(directory / "OPEN_DB.TXF"));
}

TEST_F(Hold, IsNotInheritedByAProgram) {
    ASSERT_EQ(take(), 0u);
    char name[] = "sleep";
    char seconds[] = "100";
    char* arguments[] = {name, seconds, nullptr};
    pid_t program = 0;
    ASSERT_EQ(posix_spawnp(&program, name, nullptr, nullptr, arguments, environ), 0);
    CloseHandle(handle);
    EXPECT_EQ(takeElsewhere(), 0);
    EXPECT_EQ(waitpid(program, nullptr, WNOHANG), 0) << "the program was running all the time";
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
}
