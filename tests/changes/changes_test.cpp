#include "changes/carryout.h"

#include <random>

#include <gtest/gtest.h>

#include "files/binfile.h"

// Each byte one of before or of after is torn; any other byte is somebody's, and stays.
TEST(Changes, AreToldFromForeignBytes) {
    Change change;
    std::string before, after;
    TSXbinfile::makefield(before, "before", 61);
    TSXbinfile::makefield(after, "after", 61);
    addfield(change, 1, 0, before, after);
    Decoder from(change.fields);
    const KeyField field = readfield(from);
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        std::string mixed = before;
        for (std::size_t at = 0; at < mixed.size(); ++at)
            mixed[at] = random() % 2 == 0 ? before[at] : after[at];
        const Standing wanted = mixed == before  ? Standing::before
                                : mixed == after ? Standing::after
                                                 : Standing::torn;
        EXPECT_EQ(standingof(mixed, field), wanted);
        mixed[random() % mixed.size()] = '\xEE';
        EXPECT_EQ(standingof(mixed, field), Standing::other);
    }
    EXPECT_EQ(standingof(before.substr(0, 40), field), Standing::torn); // the file ends in it
}

// The checksum does not know where a file has holes.
TEST(Changes, OfContentsAreSummedOverHoles) {
    std::string whole(3 << 20, '\0');
    whole.replace(2 << 20, 3, "end");
    const FileContent holes{3 << 20, [](const FileContent::Visit& visit) { return visit(2 << 20, "end"); }};
    std::uint32_t sum = 0;
    EXPECT_FALSE(checksumOf(holes, sum));
    EXPECT_EQ(sum, checksumOf(whole));
}
