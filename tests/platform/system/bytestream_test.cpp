#include "platform/system/bytestream.h"

#include <csignal>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "child.h"
#include "platform/system/hold.h"
#include "platform/system/tree.h"
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
    explicit SizeLimit(rlim_t size) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limited = {size, RLIM_INFINITY};
        prlimit(0, RLIMIT_FSIZE, &limited, &before_);
    }
    ~SizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_ = {};
};

bool writeText(ByteStream& stream, std::string_view text) {
    return stream.write(text.data(), text.size()) == text.size();
}

struct ByteStreamTest : testing::Test {
    bool open(const std::string& name, OpenMode mode) {
        return stream.open((directory / name).c_str(), mode);
    }
    // How making a file of this content ends: the error of its close.
    std::uint32_t make(const std::string& name, std::string_view text) {
        EXPECT_TRUE(open(name, OpenMode::write) && writeText(stream, text)) << name;
        return errorOf(stream.close());
    }

    TempDir directory;
    ByteStream stream;
};

} // namespace

// Reads and moves at random places give what a text in memory gives, whatever the buffer holds.
TEST_F(ByteStreamTest, GoesAsATextInMemoryDoes) {
    const std::string model = patterned(100000);
    writeFile(directory / "file", model);
    ASSERT_TRUE(open("file", OpenMode::read));
    std::mt19937 numbers(1);
    std::size_t position = 0;
    bool atEnd = false;
    for (int step = 0; step < 20000; ++step) {
        const std::size_t count = numbers() % (step % 50 == 0 ? 9000 : 300);
        const std::size_t left = model.size() - std::min(position, model.size());
        const std::size_t kind = numbers() % 3;
        if (kind == 0) {
            position = numbers() % (model.size() + 200);
            ASSERT_TRUE(stream.seek(static_cast<std::int64_t>(position)));
        } else if (kind == 1) {
            ASSERT_EQ(stream.skip(static_cast<std::int64_t>(count)), count <= left);
        } else {
            std::string bytes(count, '\0');
            bytes.resize(stream.read(bytes.data(), count));
            ASSERT_EQ(bytes, left > 0 ? model.substr(position, count) : "");
        }
        atEnd = kind != 0 && (atEnd || count > left);
        position += kind == 0 ? 0 : std::min(count, left);
        ASSERT_EQ(stream.tell(), static_cast<std::int64_t>(position));
        ASSERT_EQ(stream.atEnd(), atEnd);
    }
}

TEST_F(ByteStreamTest, SkipsAHugeFileAtOnceAndRefusesToGoBelowItsStart) {
    const std::int64_t size = std::int64_t{1} << 40;
    writeFile(directory / "sparse", "");
    fs::resize_file(directory / "sparse", static_cast<std::uintmax_t>(size));
    ASSERT_TRUE(open("sparse", OpenMode::read));
    EXPECT_TRUE(stream.skip(size));
    EXPECT_FALSE(stream.atEnd());
    for (const bool done : {stream.skip(INT64_MAX), stream.seek(-1), stream.skip(-1)})
        EXPECT_FALSE(done);
    EXPECT_EQ(stream.tell(), size);
    EXPECT_TRUE(stream.atEnd());
    EXPECT_TRUE(stream.seek(INT64_MAX));
    EXPECT_FALSE(stream.skip(INT64_MAX));
}

TEST_F(ByteStreamTest, ANewFileAppearsWholeAtClose) {
    const mode_t mask = umask(027);
    ASSERT_TRUE(open("new", OpenMode::write));
    EXPECT_TRUE(writeText(stream, "whole"));
    EXPECT_EQ(listTree(directory.path()), std::vector<std::string>());
    EXPECT_TRUE(stream.close());
    umask(mask);
    EXPECT_EQ(readFile(directory / "new"), "whole");
    EXPECT_EQ(fs::status(directory / "new").permissions(), fs::perms(0640));

    ASSERT_TRUE(open("taken", OpenMode::write));
    writeFile(directory / "taken", "theirs"); // another program makes the name meanwhile
    EXPECT_EQ(errorOf(stream.close()), 183);
    EXPECT_EQ(errorOf(open("taken", OpenMode::create)), 183);
    EXPECT_EQ(readFile(directory / "taken"), "theirs");
}

TEST_F(ByteStreamTest, WritingGoesThroughLinksAndFindsOtherLetters) {
    writeFile(directory / "File.DBS", "a long old content");
    fs::create_symlink("File.DBS", directory / "link");
    for (const char* name : {"link", "fILE.dbs"}) {
        ByteStream emptied;
        ASSERT_TRUE(emptied.open((directory / name).c_str(), OpenMode::write));
        EXPECT_EQ(readFile(directory / "File.DBS"), "") << "emptied at open";
        EXPECT_TRUE(emptied.close());
        EXPECT_EQ(make(name, name), 0);
        EXPECT_EQ(readFile(directory / "File.DBS"), name);
    }
    EXPECT_EQ(listTree(directory.path()), (std::vector<std::string>{"File.DBS", "link"}));
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
    fs::create_hard_link(directory / "File.DBS", directory / "second");
    EXPECT_EQ(errorOf(open("second", OpenMode::write)), 183);
    EXPECT_FALSE(stream.isOpen());
    EXPECT_EQ(readFile(directory / "second"), "fILE.dbs");
}

TEST_F(ByteStreamTest, ADiskFullAtCloseLeavesNoFile) {
    writeFile(directory / "old", "old");
    const SizeLimit limit(1000);
    for (const char* name : {"new", "old"})
        EXPECT_EQ(make(name, std::string(2000, 'x')), 112);
    ASSERT_TRUE(open("large", OpenMode::write));
    EXPECT_TRUE(writeText(stream, patterned(100000)));
    EXPECT_FALSE(writeText(stream, "x")) << "behind what was written meanwhile";
    EXPECT_EQ(errorOf(stream.close()), 112);
    EXPECT_EQ(listTree(directory.path()), std::vector<std::string>{"old"});
}

TEST_F(ByteStreamTest, WritesAtRandomPlacesGiveWhatATextInMemoryDoes) {
    std::mt19937 numbers(1);
    std::string model;
    ASSERT_TRUE(open("file", OpenMode::write));
    for (int step = 0; step < 500; ++step) {
        const std::string text = patterned(1 + numbers() % 3000);
        const std::size_t position = step % 3 == 0 ? numbers() % 300000 : model.size();
        model.resize(std::max(model.size(), position));
        model.replace(position, text.size(), text);
        ASSERT_TRUE(stream.seek(static_cast<std::int64_t>(position)) && writeText(stream, text));
    }
    EXPECT_TRUE(stream.close());
    EXPECT_EQ(readFile(directory / "file"), model);
}
