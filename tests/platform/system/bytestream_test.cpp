#include "platform/system/bytestream.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "child.h"
#include "platform/system/errors.h"
#include "tempdir.h"

namespace fs = std::filesystem;

namespace {

std::string patterned(std::size_t size) {
    std::mt19937 numbers(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(numbers());
    return bytes;
}

// Lets no file grow beyond a size: a write that crosses it comes short, the next one fails.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t size) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limited = {size, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~SizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }

private:
    rlimit before_ = {};
    void (*signal_)(int);
};

bool writeText(ByteStream& stream, std::string_view text) {
    return stream.write(text.data(), text.size()) == text.size();
}

} // namespace

// Reads, moves and writes at random places give what a text in memory gives, whatever the buffer holds.
TEST(ByteStream, GoesAsATextInMemoryDoes) {
    TempDir directory;
    const std::string path = directory / "file";
    for (const OpenMode mode : {OpenMode::read, OpenMode::update}) {
        std::string model = patterned(20000);
        writeFile(path, model);
        ByteStream stream;
        ASSERT_TRUE(stream.open(path.c_str(), mode));
        std::mt19937 numbers(1);
        const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(numbers() % limit); };
        std::size_t position = 0;
        bool atEnd = false;
        std::string bytes(9000, '\0');
        for (int step = 0; step < 20000; ++step) {
            const std::size_t count = below(step % 50 == 0 ? bytes.size() : 300);
            const std::size_t left = model.size() - std::min(position, model.size());
            switch (below(mode == OpenMode::update ? 4 : 3)) {
            case 0:
                position = below(model.size() + 200);
                atEnd = false;
                ASSERT_TRUE(stream.seek(static_cast<std::int64_t>(position)));
                break;
            case 1:
                ASSERT_EQ(stream.skip(static_cast<std::int64_t>(count)), count <= left);
                position += std::min(count, left);
                atEnd = atEnd || count > left;
                break;
            case 2:
                ASSERT_EQ(stream.read(bytes.data(), count), std::min(count, left));
                ASSERT_EQ(std::memcmp(bytes.data(), model.data() + position, std::min(count, left)), 0);
                position += std::min(count, left);
                atEnd = atEnd || count > left;
                break;
            default:
                const std::string written(count, static_cast<char>(step));
                ASSERT_TRUE(writeText(stream, written));
                model.resize(count > 0 ? std::max(model.size(), position + count) : model.size());
                model.replace(position, count, written);
                position += count;
            }
            ASSERT_EQ(stream.tell(), static_cast<std::int64_t>(position));
            ASSERT_EQ(stream.atEnd(), atEnd);
        }
        EXPECT_EQ(readFile(path), model) << "each write is in the file before the close";
    }
}

TEST(ByteStream, SkipsAHugeFileAtOnceAndRefusesToGoBelowItsStart) {
    TempDir directory;
    const std::int64_t size = std::int64_t{1} << 40;
    writeFile(directory / "sparse", "");
    fs::resize_file(directory / "sparse", static_cast<std::uintmax_t>(size));
    ByteStream stream;
    ASSERT_TRUE(stream.open((directory / "sparse").c_str(), OpenMode::read));
    char byte = 'x';
    EXPECT_TRUE(stream.skip(size - 1));
    EXPECT_EQ(stream.read(&byte, 1), 1u);
    EXPECT_EQ(byte, '\0');
    EXPECT_FALSE(stream.atEnd()) << "the last byte is not more than there was";
    EXPECT_FALSE(stream.skip(INT64_MAX));
    EXPECT_TRUE(stream.atEnd());
    EXPECT_FALSE(stream.seek(-1));
    EXPECT_FALSE(stream.skip(-1));
    EXPECT_EQ(stream.tell(), size);
    EXPECT_TRUE(stream.atEnd());
    EXPECT_TRUE(stream.seek(INT64_MAX));
    EXPECT_FALSE(stream.atEnd());
    EXPECT_EQ(stream.read(&byte, 1), 0u);
    EXPECT_FALSE(stream.skip(INT64_MAX));
}

TEST(ByteStream, AReadErrorIsNoEnd) {
    ByteStream stream;
    if (!stream.open("/proc/self/mem", OpenMode::read))
        GTEST_SKIP() << "no file here of which a read fails";
    char byte = 0;
    EXPECT_EQ(stream.read(&byte, 1), 0u); // nothing is mapped at address 0
    EXPECT_FALSE(stream.atEnd());
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
}

TEST(ByteStream, ANewFileAppearsWholeAtClose) {
    TempDir directory;
    const std::string path = directory / "new";
    const mode_t mask = umask(027);
    ByteStream stream;
    ASSERT_TRUE(stream.open(path.c_str(), OpenMode::write));
    EXPECT_TRUE(writeText(stream, "TG....body"));
    EXPECT_TRUE(stream.seek(2));
    EXPECT_TRUE(writeText(stream, "1234"));
    EXPECT_EQ(stream.tell(), 6);
    EXPECT_TRUE(stream.seek(12));
    EXPECT_TRUE(writeText(stream, "!"));
    EXPECT_EQ(listTree(directory.path()), std::vector<std::string>());
    EXPECT_TRUE(stream.close());
    umask(mask);
    EXPECT_EQ(readFile(path), std::string("TG1234body\0\0!", 13));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));

    ASSERT_TRUE(stream.open((directory / "taken").c_str(), OpenMode::write));
    EXPECT_TRUE(writeText(stream, "mine"));
    writeFile(directory / "taken", "theirs");
    EXPECT_FALSE(stream.close()) << "another program made the name meanwhile";
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(readFile(directory / "taken"), "theirs");
}

TEST(ByteStream, WritingGoesThroughLinksAndFindsOtherLetters) {
    TempDir directory;
    writeFile(directory / "File.DBS", "a long old content");
    fs::create_symlink("File.DBS", directory / "link");
    for (const char* name : {"link", "fILE.dbs"}) {
        ByteStream stream;
        ASSERT_TRUE(stream.open((directory / name).c_str(), OpenMode::write));
        EXPECT_EQ(readFile(directory / "File.DBS"), "") << "emptied at open";
        EXPECT_TRUE(writeText(stream, name));
        EXPECT_TRUE(stream.close());
        EXPECT_EQ(readFile(directory / "File.DBS"), name);
    }
    EXPECT_EQ(listTree(directory.path()), (std::vector<std::string>{"File.DBS", "link"}));
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
}

TEST(ByteStream, ADiskFullAtCloseLeavesNoFile) {
    TempDir directory;
    writeFile(directory / "old", "old");
    const int before = failedWrites();
    {
        SizeLimit limit(1000);
        for (const char* name : {"new", "old"}) {
            ByteStream stream;
            ASSERT_TRUE(stream.open((directory / name).c_str(), OpenMode::write));
            EXPECT_TRUE(writeText(stream, std::string(2000, 'x')));
            EXPECT_FALSE(stream.close());
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
        }
    }
    EXPECT_EQ(failedWrites(), before + 2);
    EXPECT_EQ(listTree(directory.path()), std::vector<std::string>{"old"});
}

TEST(ByteStream, ATornUpdateIsPutBack) {
    TempDir directory;
    const std::string content = patterned(100);
    struct Case {
        std::int64_t position;
        std::size_t count;
        rlim_t limit;
    };
    const Case cases[] = {
        {20, 60, 50},   // torn inside of the file
        {80, 60, 110},  // torn behind its old end
        {120, 60, 150}, // torn, and begun behind its end
        {20, 60, 20},   // nothing of it came through
    };
    for (const Case& c : cases) {
        writeFile(directory / "file", content);
        const int before = failedWrites();
        SizeLimit limit(c.limit);
        ByteStream stream;
        ASSERT_TRUE(stream.open((directory / "file").c_str(), OpenMode::update));
        ASSERT_TRUE(stream.seek(c.position));
        EXPECT_FALSE(writeText(stream, std::string(c.count, 'n')));
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
        EXPECT_EQ(failedWrites(), before + 1);
        EXPECT_EQ(stream.tell(), c.position);
        EXPECT_EQ(readFile(directory / "file"), content) << c.position << " up to " << c.limit;
    }
}

TEST(ByteStream, AppendsBehindWhatOthersAppended) {
    TempDir directory;
    const std::string path = directory / "log";
    ByteStream one;
    ByteStream other;
    ASSERT_TRUE(one.open(path.c_str(), OpenMode::append));
    ASSERT_TRUE(other.open((directory / "LOG").c_str(), OpenMode::append));
    EXPECT_TRUE(writeText(one, "a\n"));
    EXPECT_TRUE(writeText(other, "b\n"));
    EXPECT_TRUE(writeText(one, "c\n"));
    EXPECT_EQ(readFile(path), "a\nb\nc\n");
    EXPECT_EQ(listTree(directory.path()), std::vector<std::string>{"log"});
}

TEST(ByteStream, OnlyPlainFilesOpenAndNothingElseIsTouched) {
    TempDir directory;
    const auto in = [&](const char* name) { return directory / name; };
    fs::create_directory(in("directory"));
    writeFile(in("plain"), "");
    fs::create_symlink("nowhere", in("dangling"));
    fs::create_symlink("round", in("round"));
    ASSERT_EQ(mkfifo(in("pipe").c_str(), 0666), 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, in("socket").c_str(), sizeof address.sun_path - 1);
    const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socketFile, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(socketFile);
    const auto tree = listTree(directory.path());

    struct Case {
        std::string path;
        std::uint32_t error;
        bool canBeMade = false;
    };
    const Case cases[] = {
        {in("directory"), ERROR_ACCESS_DENIED},
        {in("pipe"), ERROR_ACCESS_DENIED},
        {in("socket"), ERROR_ACCESS_DENIED},
        {"/dev/null", ERROR_ACCESS_DENIED},
        {in("dangling"), ERROR_FILE_NOT_FOUND},
        {in("round"), ERROR_FILE_NOT_FOUND},
        {in("missing"), ERROR_FILE_NOT_FOUND, true},
        {in("missing/file"), ERROR_PATH_NOT_FOUND},
        {in("plain/file"), ERROR_PATH_NOT_FOUND},
        {in(std::string(300, 'n').c_str()), ERROR_FILENAME_EXCED_RANGE},
    };
    for (const Case& c : cases)
        for (const OpenMode mode : {OpenMode::read, OpenMode::update, OpenMode::write, OpenMode::append}) {
            if (c.canBeMade && (mode == OpenMode::write || mode == OpenMode::append))
                continue;
            ByteStream stream;
            SetLastError(0);
            EXPECT_FALSE(stream.open(c.path.c_str(), mode)) << c.path;
            EXPECT_EQ(GetLastError(), c.error) << c.path << " in mode " << static_cast<int>(mode);
            EXPECT_EQ(listTree(directory.path()), tree);
        }
    ByteStream stream;
    for (const std::string& path : {std::string(), in("missing/")})
        EXPECT_FALSE(stream.open(path.c_str(), OpenMode::write)) << path;
    EXPECT_EQ(listTree(directory.path()), tree);
}

TEST(ByteStream, PermissionsAreRespected) {
    TempDir directory;
    fs::permissions(directory.path(), fs::perms(0755));
    writeFile(directory / "closed", "");
    fs::permissions(directory / "closed", fs::perms(0));
    const int status = inChild([&] {
        if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0))
            return notPossibleHere;
        if (!fs::exists(directory / "closed"))
            return notPossibleHere;
        ByteStream stream;
        for (const OpenMode mode : {OpenMode::read, OpenMode::update, OpenMode::write, OpenMode::append})
            if (stream.open((directory / "closed").c_str(), mode) || GetLastError() != ERROR_ACCESS_DENIED)
                return 1;
        const bool isOwner = access(directory.path().c_str(), W_OK) == 0;
        return !isOwner && stream.open((directory / "new").c_str(), OpenMode::write) ? 2 : 0;
    });
    if (status == notPossibleHere)
        GTEST_SKIP() << "no user here whom permissions stop";
    EXPECT_EQ(status, 0);
}

// Where a file can't be had without a name it is made at open, and taken away again when its content can't be
// written.
TEST(ByteStream, WithoutProcANewFileIsMadeAtOpen) {
    TempDir directory;
    const int status = inChild([&] {
        const int spaces = CLONE_NEWNS | (geteuid() == 0 ? 0 : CLONE_NEWUSER);
        if (unshare(spaces) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", "/proc", "tmpfs", 0, nullptr) != 0)
            return notPossibleHere;
        ByteStream stream;
        if (!stream.open((directory / "new").c_str(), OpenMode::write) || !fs::exists(directory / "new"))
            return 1;
        if (!writeText(stream, "content") || !stream.close() || readFile(directory / "new") != "content")
            return 2;
        SizeLimit limit(3);
        if (!stream.open((directory / "torn").c_str(), OpenMode::write) || !writeText(stream, "content"))
            return 3;
        return stream.close() || fs::exists(directory / "torn") ? 4 : 0;
    });
    if (status == notPossibleHere)
        GTEST_SKIP() << "no mount of its own for a process here";
    EXPECT_EQ(status, 0);
}

TEST(ByteStream, RemovesPlainFilesAndLinksOnly) {
    TempDir directory;
    writeFile(directory / "File", "kept");
    writeFile(directory / "gone", "");
    fs::create_directory(directory / "directory");
    fs::create_symlink("File", directory / "link");
    fs::create_symlink("directory", directory / "dirlink");
    for (const char* name : {"link", "dirlink", "GONE"})
        EXPECT_TRUE(removeFile((directory / name).c_str())) << name;
    EXPECT_FALSE(removeFile((directory / "directory").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(removeFile((directory / "gone").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(listTree(directory.path()), (std::vector<std::string>{"File", "directory/"}));
    EXPECT_EQ(readFile(directory / "File"), "kept");
}
