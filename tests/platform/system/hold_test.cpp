#include "platform/system/hold.h"

#include <csignal>
#include <cstddef>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "child.h"
#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "tempdir.h"

namespace {

// Whether another process can have the hold; else the error it got.
int errorElsewhere(const std::string& path) {
    return inChild([&] {
        return CreateFileA(path.c_str()) == INVALID_HANDLE_VALUE ? static_cast<int>(GetLastError()) : 0;
    });
}

// From now on the system answers each request for a lock as a file system without locks does.
bool takeLocksAway() {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fcntl, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[1])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, F_OFD_SETLK, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOLCK),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog whole = {std::size(program), program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &whole) == 0;
}

} // namespace

TEST(Hold, KeepsOthersOffUntilItIsGivenUp) {
    TempDir directory;
    const std::string marker = directory / "open_db.txf";
    HANDLE handle = CreateFileA(marker.c_str());
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(errorElsewhere(marker), static_cast<int>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(errorElsewhere(directory / "OPEN_DB.TXF"), static_cast<int>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(CreateFileA(marker.c_str()), INVALID_HANDLE_VALUE) << "nor can this process have it twice";
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    {
        ByteStream stream;
        EXPECT_TRUE(stream.open(marker.c_str(), OpenMode::update));
    }
    EXPECT_EQ(errorElsewhere(marker), static_cast<int>(ERROR_SHARING_VIOLATION))
        << "another use of the file ended";
    CloseHandle(handle);
    CloseHandle(INVALID_HANDLE_VALUE);

    writeFile(marker, "content");
    handle = CreateFileA(marker.c_str());
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    CloseHandle(handle);
    EXPECT_EQ(errorElsewhere(marker), 0);
    EXPECT_EQ(readFile(marker), "content");
}

TEST(Hold, IsNotInheritedByAProgram) {
    TempDir directory;
    const std::string marker = directory / "marker";
    const HANDLE handle = CreateFileA(marker.c_str());
    char name[] = "sleep";
    char seconds[] = "100";
    char* arguments[] = {name, seconds, nullptr};
    pid_t program = 0;
    ASSERT_EQ(posix_spawnp(&program, name, nullptr, nullptr, arguments, environ), 0);
    CloseHandle(handle);
    EXPECT_EQ(errorElsewhere(marker), 0);
    EXPECT_EQ(waitpid(program, nullptr, WNOHANG), 0) << "the program was running all the time";
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
}

TEST(Hold, GoesWithAProcessThatIsKilled) {
    TempDir directory;
    const std::string marker = directory / "marker";
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        const char held = CreateFileA(marker.c_str()) == INVALID_HANDLE_VALUE ? 'n' : 'y';
        if (write(ready[1], &held, 1) == 1)
            pause();
        _exit(0);
    }
    char held = 'n';
    EXPECT_EQ(read(ready[0], &held, 1), 1);
    EXPECT_EQ(held, 'y');
    EXPECT_EQ(CreateFileA(marker.c_str()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    const HANDLE handle = CreateFileA(marker.c_str());
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    CloseHandle(handle);
    close(ready[0]);
    close(ready[1]);
}

TEST(Hold, IsRefusedWhereItCannotBeHad) {
    TempDir directory;
    std::filesystem::create_directory(directory / "directory");
    std::filesystem::create_symlink("nowhere", directory / "dangling");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0666), 0);
    const struct {
        const char* path;
        std::uint32_t error;
    } cases[] = {
        {"directory", ERROR_ACCESS_DENIED},
        {"pipe", ERROR_ACCESS_DENIED},
        {"dangling", ERROR_FILE_NOT_FOUND},
        {"missing/marker", ERROR_PATH_NOT_FOUND},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(CreateFileA((directory / c.path).c_str()), INVALID_HANDLE_VALUE) << c.path;
        EXPECT_EQ(GetLastError(), c.error) << c.path;
    }
    EXPECT_EQ(listTree(directory.path()), (std::vector<std::string>{"dangling", "directory/", "pipe"}));
}

TEST(Hold, IsRefusedByAFileSystemWithoutLocks) {
    TempDir directory;
    const int status = inChild([&] {
        if (!takeLocksAway())
            return notPossibleHere;
        return CreateFileA((directory / "marker").c_str()) == INVALID_HANDLE_VALUE
                   ? static_cast<int>(GetLastError())
                   : 0;
    });
    if (status == notPossibleHere)
        GTEST_SKIP() << "the answers of the system can't be changed here";
    EXPECT_EQ(status, static_cast<int>(ERROR_NOT_SUPPORTED));
}
