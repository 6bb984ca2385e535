#include "platform/system/text.h"

#include <gtest/gtest.h>

#include "platform/system/errors.h"
#include "platform/system/letters.h"

TEST(Text, CutsWhatDoesNotFitAndAlwaysEnds) {
    Text<6> text;
    EXPECT_TRUE(text.empty());
    text = "12345";
    EXPECT_STREQ(text, "12345");
    text = "123456789";
    EXPECT_STREQ(text, "12345");
    text = text.c_str() + 2; // a piece of itself
    EXPECT_STREQ(text, "345");
    EXPECT_STREQ(text.format("%s-%d", "ab", 123456), "ab-12");
}

TEST(Letters, CompareIgnoringTheCaseOfAsciiLettersOnly) {
    const struct {
        const char* a;
        const char* b;
        int order;
    } cases[] = {
        {"Abc", "aBC", 0}, {"a", "B", -1},  {"ab", "a", 1},       {"", "a", -1},
        {"_", "A", -1},    {"[", "z", -1},  {"\xC4", "\xE4", -1}, {"z", "\x80", -1},
        {"@", "`", -1},    {"a", "A ", -1}, {"\x7F", "\xFF", -1},
    };
    const auto sign = [](int number) { return (number > 0) - (number < 0); };
    for (const auto& c : cases) {
        EXPECT_EQ(sign(compareIgnoringCase(c.a, c.b)), c.order) << c.a << " " << c.b;
        EXPECT_EQ(sign(compareIgnoringCase(c.b, c.a)), -c.order) << c.a << " " << c.b;
        EXPECT_EQ(equalIgnoringCase(c.a, c.b), c.order == 0);
    }
}

TEST(Errors, HaveTextsThatEndALine) {
    EXPECT_EQ(FormatMessageA(ERROR_SHARING_VIOLATION),
              "The process cannot access the file because it is being used by another process.\r\n");
    EXPECT_EQ(FormatMessageA(ERROR_PATH_NOT_FOUND), "The system cannot find the path specified.\r\n");
    EXPECT_EQ(FormatMessageA(4000000000u), "");
}
