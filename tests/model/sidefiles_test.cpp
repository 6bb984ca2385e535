#include "databasetest.h"

namespace {

class SideFiles : public DatabaseTest {
protected:
    // What the log says of the file; empty if it is sound. The problem list has to say the same.
    std::string damage(const std::string& name, const std::string& bytes) {
        put(name, bytes);
        takeLog();
        database->analyse();
        const std::string lines = takeLog(), mark = "        ! corrupt: ";
        const std::size_t at = lines.find(mark);
        const std::string found =
            at == std::string::npos ? ""
                                    : lines.substr(at + mark.size(), lines.find('\n', at) - at - mark.size());
        EXPECT_EQ(problems(), found.empty() ? Texts() : Texts{"7/0 ROOT/" + name}) << lines;
        std::filesystem::remove(root / name);
        return found;
    }
};

} // namespace

TEST_F(SideFiles, HeaderAndChunkFramesOnly) {
    load();
    for (const std::string family : {"fprint/GEL", "char/PHEN", "seq/SEQ", "matrix/PAIRSIM", "gel2d/GEL2D"}) {
        const std::size_t slash = family.find('/');
        const std::string name = family.substr(0, slash) + "/x.CNF",
                          header = family.substr(slash + 1) + "TYPE-CNF-v1.0";
        EXPECT_EQ(damage(name, counted(header)), "");
        for (const std::string& wrong :
             {header, counted(header + "1"), counted("TX-COMP-v1.0"), std::string()})
            EXPECT_EQ(damage(name, wrong), "invalid header") << name;
    }
    const std::string header = "TX-COMP-v1.0", next = frame("two", 40) + std::string(10, 'b');
    const std::pair<std::string, const char*> rows[] = {
        {"", "invalid header"},
        {header.substr(0, 11), "invalid header"},
        {"tx-COMP-v1.0", "invalid header"},
        {counted(header), "invalid header"},
        {header, ""},
        {header + frame("one", 21) + next, ""},
        {header + frame("one", 21) + next.substr(0, 4), ""},
        {header + frame("one", 21) + next.substr(0, 6), "invalid tag"},
        {header + frame("one", 21) + next + "T", ""},
        {header + frame("one", 21) + next + "Tgxyz", "invalid tag"},
        {header + frame("one", 4000) + "T", ""},
        {header + frame("one", -1) + next, ""},
        {header + frame("one", -1) + "body!", "invalid tag"},
        {header + frame("one", 20), "invalid tag"},
        {header + frame("one", 0), "invalid tag"},
    };
    for (const auto& [bytes, expected] : rows)
        EXPECT_EQ(damage("./x.CMP", bytes), expected) << testing::PrintToString(bytes);
}
