#include "platform/system/text.h"

#include <gtest/gtest.h>

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
