#include "platform/system/faults.h"

#include <filesystem>
#include <functional>

#include <gtest/gtest.h>

#include "child.h"
#include "platform/system/bytestream.h"
#include "platform/system/directory.h"
#include "platform/system/filesearch.h"
#include "platform/system/hold.h"
#include "tempdir.h"

namespace {

DiskOperation faultyKind;
int faultyNumber = 0;

// The n-th operation of a kind from now on fails, and no other.
void failAt(DiskOperation kind, int number) {
    faultyKind = kind;
    faultyNumber = number;
    diskFaultHook = [](DiskOperation operation) { return operation == faultyKind && --faultyNumber == 0; };
    SetLastError(0);
}

struct Faults : testing::Test {
    ~Faults() override { diskFaultHook = nullptr; }
    std::string at(const char* name) const { return directory / name; }
    bool search() const {
        WIN32_FIND_DATAA data;
        std::vector<std::string> passedOver;
        const FindHandle found = FindFirstFileA(at("*").c_str(), data, passedOver);
        FindClose(found);
        return found != nullptr;
    }
    bool hold(const char* name) const {
        const HANDLE handle = CreateFileA(at(name).c_str());
        CloseHandle(handle);
        return handle != INVALID_HANDLE_VALUE;
    }

    TempDir directory;
    ByteStream stream;
    char bytes[11] = {};
};

} // namespace

// The failed operation changes nothing, and leaves nothing in the way of the next one.
TEST_F(Faults, FailOneOperationAndChangeNothing) {
    using Operation = DiskOperation;
    const struct {
        Operation kind;
        OpenMode mode;
        std::size_t ahead; // so many bytes are read before
        std::function<bool()> call;
    } cases[] = {
        {Operation::open, OpenMode::read, 0,
         [&] { return ByteStream().open(at("file").c_str(), OpenMode::read); }},
        {Operation::open, OpenMode::read, 0,
         [&] { return ByteStream().open(at("new").c_str(), OpenMode::write); }},
        {Operation::open, OpenMode::read, 0, [&] { return search(); }},
        {Operation::open, OpenMode::read, 0, [&] { return hold("marker"); }},
        {Operation::lock, OpenMode::read, 0, [&] { return hold("file"); }},
        {Operation::read, OpenMode::read, 2, [&] { return stream.read(bytes, 2) == 2; }}, // from the buffer
        {Operation::read, OpenMode::read, 2, [&] { return stream.skip(1); }},
        {Operation::seek, OpenMode::read, 11, [&] { return stream.seek(3); }},
        {Operation::write, OpenMode::update, 2, [&] { return stream.write("a", 1) == 1; }},
        {Operation::write, OpenMode::append, 0, [&] { return stream.write("a", 1) == 1; }},
        {Operation::makeDirectory, OpenMode::read, 0,
         [&] { return CreateDirectoryA(at("made").c_str()) != 0; }},
        {Operation::remove, OpenMode::read, 0, [&] { return removeFile(at("file").c_str()); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        writeFile(at("file"), "0123456789");
        ASSERT_TRUE(stream.open(at("file").c_str(), c.mode));
        stream.read(bytes, c.ahead);
        const auto state = [&] {
            return std::tuple(stream.tell(), stream.atEnd(), readFile(at("file")),
                              listTree(directory.path()));
        };
        const auto before = state();
        const int failures = failedWrites();
        failAt(c.kind, 1);
        EXPECT_EQ(errorOf(c.call()), ERROR_IO_DEVICE);
        EXPECT_EQ(state(), before);
        EXPECT_TRUE(c.call());
        EXPECT_TRUE(stream.close());
        EXPECT_EQ(failedWrites() - failures, c.kind == Operation::write ? 1 : 0);
    }
}

// A new file takes one write for each call and one at close; whichever fails, the file does not appear.
TEST_F(Faults, WriteOfANewFile) {
    for (int number = 1; number <= 4; ++number) {
        const int before = failedWrites();
        failAt(DiskOperation::write, number);
        ASSERT_TRUE(stream.open(at("new").c_str(), OpenMode::write));
        EXPECT_EQ(stream.write("a", 1), number == 1 ? 0u : 1u);
        EXPECT_EQ(stream.write("b", 1), number == 2 ? 0u : 1u);
        EXPECT_EQ(errorOf(stream.close()), number < 4 ? ERROR_IO_DEVICE : 0);
        EXPECT_EQ(std::filesystem::exists(at("new")), number == 4);
        EXPECT_EQ(failedWrites() > before, number < 4);
    }
}
