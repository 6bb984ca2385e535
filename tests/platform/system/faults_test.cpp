#include "platform/system/faults.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "platform/system/bytestream.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/filesearch.h"
#include "platform/system/hold.h"
#include "tempdir.h"

namespace {

DiskOperation faultyKind;
int faultyNumber = 0;

bool failAtNumber(DiskOperation operation) {
    return operation == faultyKind && --faultyNumber == 0;
}

// The n-th operation of a kind from now on fails, and no other.
void failAt(DiskOperation kind, int number) {
    faultyKind = kind;
    faultyNumber = number;
    diskFaultHook = failAtNumber;
    SetLastError(0);
}

class Faults : public testing::Test {
protected:
    void SetUp() override { writeFile(path, "0123456789"); }
    void TearDown() override { diskFaultHook = nullptr; }

    // Whether nothing has failed so far; the fault itself leaves the number of a device error.
    bool nothingFailed() const { return GetLastError() == 0; }

    TempDir directory;
    const std::string path = directory / "file";
    ByteStream stream;
    char bytes[10] = {};
};

} // namespace

TEST_F(Faults, Open) {
    failAt(DiskOperation::open, 3);
    WIN32_FIND_DATAA data;
    std::vector<std::string> passedOver;
    EXPECT_TRUE(stream.open(path.c_str(), OpenMode::read));
    const FindHandle search = FindFirstFileA((directory / "*").c_str(), data, passedOver);
    EXPECT_NE(search, nullptr);
    FindClose(search);
    EXPECT_TRUE(nothingFailed());
    EXPECT_EQ(CreateFileA((directory / "marker").c_str()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    failAt(DiskOperation::open, 1);
    EXPECT_EQ(FindFirstFileA((directory / "*").c_str(), data, passedOver), nullptr);
    failAt(DiskOperation::open, 1);
    EXPECT_FALSE(ByteStream().open((directory / "new").c_str(), OpenMode::write));
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    EXPECT_EQ(listTree(directory.path()), std::vector<std::string>{"file"});
}

TEST_F(Faults, ReadAndSkip) {
    failAt(DiskOperation::read, 2);
    ASSERT_TRUE(stream.open(path.c_str(), OpenMode::read));
    EXPECT_EQ(stream.read(bytes, 2), 2u);
    EXPECT_TRUE(nothingFailed());
    EXPECT_EQ(stream.read(bytes, 2), 0u) << "also where the buffer holds the bytes";
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    EXPECT_FALSE(stream.atEnd());
    failAt(DiskOperation::read, 1);
    EXPECT_FALSE(stream.skip(1));
    EXPECT_EQ(stream.tell(), 2);
    EXPECT_TRUE(stream.skip(1));
}

TEST_F(Faults, Seek) {
    ASSERT_TRUE(stream.open(path.c_str(), OpenMode::read));
    EXPECT_EQ(stream.read(bytes, 10), 10u);
    EXPECT_FALSE(stream.skip(1));
    failAt(DiskOperation::seek, 1);
    EXPECT_FALSE(stream.seek(3));
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    EXPECT_EQ(stream.tell(), 10);
    EXPECT_TRUE(stream.atEnd());
    EXPECT_TRUE(stream.seek(3));
}

TEST_F(Faults, WriteInPlaceAndAppend) {
    for (const OpenMode mode : {OpenMode::update, OpenMode::append}) {
        SetUp();
        const int before = failedWrites();
        failAt(DiskOperation::write, 2);
        ASSERT_TRUE(stream.open(path.c_str(), mode));
        EXPECT_EQ(stream.write("a", 1), 1u);
        EXPECT_TRUE(nothingFailed());
        EXPECT_EQ(stream.write("b", 1), 0u);
        EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
        EXPECT_EQ(stream.write("c", 1), 1u);
        EXPECT_TRUE(stream.close());
        EXPECT_EQ(readFile(path), mode == OpenMode::update ? "ac23456789" : "0123456789ac");
        EXPECT_EQ(failedWrites(), before + 1);
    }
}

// A new file takes one write for each call and one at close; whichever fails, the file does not appear.
TEST_F(Faults, WriteOfANewFile) {
    for (int number = 1; number <= 4; ++number) {
        const int before = failedWrites();
        failAt(DiskOperation::write, number);
        ASSERT_TRUE(stream.open((directory / "new").c_str(), OpenMode::write));
        EXPECT_EQ(stream.write("a", 1), number == 1 ? 0u : 1u);
        EXPECT_EQ(stream.write("b", 1), number == 2 ? 0u : 1u);
        EXPECT_EQ(stream.close(), number == 4);
        EXPECT_EQ(std::filesystem::exists(directory / "new"), number == 4);
        EXPECT_EQ(failedWrites() > before, number < 4);
        EXPECT_EQ(nothingFailed(), number == 4);
    }
}

TEST_F(Faults, RemoveDirectoryAndLock) {
    failAt(DiskOperation::remove, 1);
    EXPECT_FALSE(removeFile(path.c_str()));
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    EXPECT_EQ(readFile(path), "0123456789");

    failAt(DiskOperation::makeDirectory, 1);
    EXPECT_EQ(CreateDirectoryA((directory / "made").c_str()), 0);
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    EXPECT_FALSE(std::filesystem::exists(directory / "made"));

    failAt(DiskOperation::lock, 1);
    EXPECT_EQ(CreateFileA(path.c_str()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    const HANDLE handle = CreateFileA(path.c_str());
    EXPECT_NE(handle, INVALID_HANDLE_VALUE) << "the refused one is closed and holds nothing";
    CloseHandle(handle);
}
