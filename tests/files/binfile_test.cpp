#include "files/binfile.h"

#include <climits>

#include "databasetest.h"

namespace {

class BinFile : public DatabaseTest {
protected:
    std::string name() const { return root / "file"; }
    void open(const std::string& bytes) {
        writeFile(name(), bytes);
        ASSERT_EQ(file.openread(name().c_str()), 1);
    }
    // The lines since the last call, each without what all have in front.
    std::string errors() {
        std::string text = takeLog();
        for (std::size_t at; (at = text.find("Local error: TSXbinfile: ")) != std::string::npos;)
            text.erase(at, 25);
        return text;
    }

    TSXbinfile file;
};

const std::string letters(200, 'a');
const std::string sixty(60, 'a');

std::string tooLong(const std::string& lengthAndCapacity) {
    return "length of string exceeded capacity (" + lengthAndCapacity + ")\n";
}

std::string unread(const std::string& results) {
    return "could not read string from ROOT/file (" + results + ")\n";
}

} // namespace

TEST_F(BinFile, FieldStringsOfEveryLengthAndCapacity) {
    const struct {
        std::string bytes, text;
        int position;
        std::string lines;
    } rows[] = {
        {integer(0) + integer(61) + letters, "", 69, ""},
        {integer(0) + integer(0) + letters, "", 8, ""},
        {integer(60) + integer(61) + letters, sixty, 69, ""},
        {integer(61) + integer(61) + letters, sixty, 69, tooLong("61>=61")},
        {integer(100) + integer(150) + letters, sixty, 158, tooLong("100>=61")},
        {integer(100) + integer(3) + letters, sixty, 68, tooLong("100>=61")},
        {integer(5) + integer(3) + letters, "aaaaa", 13, ""},
        {integer(5) + integer(-1) + letters, "aaaaa", 13, ""},
        {integer(5) + integer(INT_MIN) + letters, "aaaaa", 13, ""},
        {integer(5) + integer(INT_MAX) + letters, "aaaaa", 208, ""},
        {integer(5) + integer(61) + std::string("ab\0cd", 5) + letters, "ab", 69, ""},
        {integer(-1) + integer(61) + letters, "???", 69, unread("1 0 -1")},
        {integer(INT_MIN) + integer(INT_MIN) + letters, "???", 8, unread("1 0 -2147483648")},
        {integer(INT_MAX) + integer(61) + "abc", "???", 11, tooLong("2147483647>=61") + unread("1 0 60")},
        {integer(5) + integer(61) + "abc", "???", 11, unread("1 0 5")},
        {integer(5) + integer(61) + "abcde", "abcde", 13, ""},
        {integer(0) + "xx", "", 6, ""},
        {integer(4) + "xx", "???", 6, unread("1 0 4")},
        {"xx", "???", 2, unread("0 0 0")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes.substr(0, 16)));
        open(row.bytes);
        std::string text = "before";
        EXPECT_EQ(file.readfield(text, 61), row.text != "???");
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(file.tell(), row.position);
        EXPECT_EQ(errors(), row.lines);
        file.close();
    }
}

TEST_F(BinFile, CountedStrings) {
    open(integer(0) + counted(std::string(99, 'b')) + integer(-5) + counted(std::string(150, 'a')));
    const struct {
        std::string text;
        int position;
        std::string lines;
    } rows[] = {{"", 4, ""},
                {std::string(99, 'b'), 107, ""},
                {"???", 111, unread("1 0 -5")},
                {std::string(99, 'a'), 214, tooLong("150>=100")},
                {"???", 265, tooLong("1633771873>=100") + unread("1 0 99")},
                {"???", 265, unread("0 0 0")}};
    std::string text;
    for (const auto& row : rows) {
        EXPECT_EQ(file.readstring(text, 100), row.text != "???");
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(file.tell(), row.position);
        EXPECT_EQ(errors(), row.lines);
    }
    file.close();
}

TEST_F(BinFile, AWalkMeetsCutAndForeignFramesAndGoesForwardOnly) {
    const auto noTag = [](const std::string& bytes) {
        return "could not read tag from ROOT/file (--" + bytes + "--) 1\n";
    };
    constexpr int none = -9;
    const struct {
        std::string bytes;
        int tag, skip, position;
        std::string lines;
    } rows[] = {
        {"", 0, none, 0, ""},
        {"XXXX", 0, none, 4, ""},
        {frame("abc", 9).substr(0, 4), 0, none, 4, ""},
        {"tgabc1234", -1, none, 5, noTag("tgabc")},
        {"TXabc1234", -1, none, 5, noTag("TXabc")},
        {std::string("T\0abc1234", 9), -1, none, 5, noTag("T")},
        {frame("abc", 9), 1, 1, 9, ""},
        {frame("abc", 10), 1, 1, 10, ""},
        {frame("abc", INT_MAX), 1, 1, INT_MAX, ""},
        {frame("abc", -1), 1, 0, 9, ""},
        {frame("abc", INT_MIN), 1, 0, 9, ""},
        {frame("abc", 8), 1, -1, 9, "!"},
        {frame("abc", 0), 1, -1, 9, "!"},
        {frame("abc", 9).substr(0, 5), 1, -1, 5, "!"},
        {frame("abc", -1).substr(0, 8), 1, -1, 8, "!"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.bytes));
        open(row.bytes);
        char tag[tagBufferSize] = "zzzz";
        EXPECT_EQ(file.readtag(tag), row.tag);
        EXPECT_STREQ(tag, row.tag == 1 ? "abc" : "");
        EXPECT_EQ(row.tag == 1 ? file.skipchunk() : none, row.skip);
        EXPECT_EQ(file.tell(), row.position);
        const std::string lines = errors();
        EXPECT_TRUE(row.lines == "!" ? lines.find("ROOT/file") != std::string::npos : lines == row.lines)
            << lines;
        file.close();
    }
}

TEST_F(BinFile, EveryMisuseAndFailureHasItsLine) {
    std::string text;
    std::int32_t number = 7;
    char byte = 0;
    file.close();
    EXPECT_EQ(file.blockwrite("x", 1) + file.openupdate(name().c_str()) + file.readint(number), 0);
    EXPECT_EQ(errors(), "tried to close closed file\ntried to blockwrite to closed file ???\n"
                        "Could not open file ROOT/file\n"
                        "tried to blockread from closed file ???\ncould not read int from ???\n");
    open("abc");
    EXPECT_EQ(file.openread("elsewhere"), -1);
    EXPECT_EQ(file.blockread(&byte, 0) + file.blockread(&byte, -1) + file.blockwrite("x", 0), 0);
    EXPECT_EQ(file.blockread(&byte, 1), 1);
    EXPECT_EQ(file.iseof(), 0);
    EXPECT_EQ(file.readint(number) + file.writeint(1) + file.writestring("x"), 0);
    EXPECT_EQ(number, 7);
    EXPECT_NE(file.iseof(), 0);
    EXPECT_EQ(errors(), "tried to open opened file\ncould not read int from ROOT/file\n"
                        "could not write int to ROOT/file\ncould not write string to ROOT/file\n");
    file.close();
    EXPECT_EQ(file.readstring(text, 100), 0);
    EXPECT_EQ(errors(), "tried to blockread from closed file ROOT/file\n" + unread("0 0 0"));
    { EXPECT_EQ(TSXbinfile().openread(name().c_str()), 1); }
    EXPECT_EQ(errors(), "file not closed\n");
}
