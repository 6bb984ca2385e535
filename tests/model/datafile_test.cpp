#include "model/datafile.h"

#include <climits>

#include "databasetest.h"

namespace {

// valid, ondisk, keycount
using State = std::vector<std::int32_t>;

class DataFile : public DatabaseTest {
protected:
    DataFile() { load(); }
    // Reads this as the one file of its class.
    State state(int fileclass, const std::string& bytes) {
        put(fileclass, "A", bytes);
        takeLog();
        list = std::make_unique<TSXfilelist>(*database, fileclass);
        return {list->files[1]->valid, list->files[1]->ondisk, list->files[1]->keycount};
    }
    Texts keys() const { return keysOf(*list->files[1]); }
    std::ptrdiff_t logLines() {
        const std::string lines = takeLog();
        return std::count(lines.begin(), lines.end(), '\n');
    }

    std::unique_ptr<TSXfilelist> list;
};

const std::string header = counted("TX-DBS-v1.0");
const std::string noFields = header + frame("FLD", 28) + integer(0);
const std::string one = frame("ENT", 0) + integer(1) + field("k");

} // namespace

// The outcome follows from what stands before the cut: the header, the frame of the foreign chunk, the tag of
// the records, their count, and the text of each key.
TEST_F(DataFile, CutAtEveryLengthAndChangedInEveryByteOfTheHeader) {
    for (int fileclass = 0; fileclass < 6; ++fileclass) {
        const Texts written = fileclass == 5 ? Texts{"one"} : Texts{"one", "two", ""};
        const std::string whole = dataFile(fileclass, "T", written);
        const std::size_t headerEnd = 4 + std::string(formats[fileclass].header).size(),
                          foreign = whole.find("TGXYZ"),
                          tagEnd = whole.find(formats[fileclass].recordtag) + 3,
                          records = tagEnd + (fileclass == 5 ? 4 : 8);
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            SCOPED_TRACE(formats[fileclass].directory + (" " + std::to_string(length)));
            const bool inForeign = length >= foreign + 5 && length < foreign + 9,
                       inRecords = length >= tagEnd && length < records;
            State expected = {1, 1, static_cast<int>(length < tagEnd ? 0 : written.size())};
            if (length < headerEnd || (inRecords && fileclass != 5))
                expected = {0, 0, 0};
            else if (inForeign || inRecords)
                expected = {0, 1, inRecords};
            EXPECT_EQ(state(fileclass, whole.substr(0, length)), expected);
            std::size_t textEnd = records;
            for (std::size_t i = 0; i < keys().size(); ++i, textEnd += record(fileclass, "", "").size())
                EXPECT_EQ(keys()[i], length >= textEnd + (written[i].empty() ? 4 : 11) ? written[i] : "???");
        }
        for (std::size_t at = 0; at < headerEnd; ++at)
            for (const int bits : {0x01, 0x20, 0x80, 0xff}) {
                std::string changed = whole;
                changed[at] = static_cast<char>(changed[at] ^ bits);
                EXPECT_EQ(state(fileclass, changed), (State{0, 0, 0})) << at;
            }
    }
}

// A count is believed only from 1 to 1000, and reading costs what the file holds, not what it announces.
TEST_F(DataFile, CountsAndTheirCost) {
    for (int fileclass = 0; fileclass < 5; ++fileclass)
        for (const int count : {INT_MIN, -1, 0, 1, 1000, 1001, INT_MAX}) {
            const int usable = count >= 1 && count <= 1000;
            EXPECT_EQ(state(fileclass, counted(formats[fileclass].header) +
                                           frame(formats[fileclass].recordtag, 0) + integer(count)),
                      (State{usable, usable, usable * count}))
                << count;
            EXPECT_LT(logLines(), 6 * (usable * count + 1) + 210);
        }
    EXPECT_EQ(state(0, dataFile(0, "", Texts(1000, "k"))), (State{1, 1, 1000}));
    EXPECT_EQ(state(0, dataFile(0, "", Texts(1001, "k"))), (State{0, 0, 0}));
    const std::string announced = header + frame("FLD", 28) + integer(INT_MAX);
    EXPECT_EQ(state(0, announced + integer(0) + integer(-1) + integer(5) + "ab"), (State{1, 1, 0}));
    EXPECT_LT(logLines(), 10);
    EXPECT_EQ(state(0, header + frame("FLD", 0) + integer(-1) + one), (State{1, 1, 1}));
}

TEST_F(DataFile, ChunksThatMisleadAWalk) {
    const struct {
        std::string chunks;
        State expected;
    } rows[] = {
        {frame("ABC", 37) + one, {1, 1, 1}},           // empty
        {frame("ABC", -1) + one, {1, 1, 1}},           // no seek: the walk goes on where it stands
        {frame("ABC", -1) + "body " + one, {0, 1, 0}}, // where no frame stands
        {frame("ABC", 5000) + one, {1, 1, 0}},         // behind the end of the file
        {frame("ABC", 36) + one, {0, 1, 0}},           // in its own frame
        {frame("ABC", 0) + one, {0, 1, 0}},
        {one + frame("ABC", 28), {0, 1, 1}}, // back to the records
        {one + frame("ABC", 28).substr(0, 7), {0, 1, 1}},
        {one + "junk of any kind", {0, 1, 1}},
        {one + "junk", {1, 1, 1}},
        {frame("ent", 37) + one, {1, 1, 1}}, // tags compare exactly
        {one + frame("ENT", 0) + integer(2) + field("b") + field("c"), {1, 1, 2}},
        {one + frame("ENT", 0) + integer(1001), {0, 0, 0}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.chunks));
        EXPECT_EQ(state(0, noFields + row.chunks), row.expected);
        const std::string lines = takeLog();
        const std::size_t error = lines.find("Local error");
        EXPECT_EQ(error == lines.rfind("Local error") && error != std::string::npos,
                  row.expected[1] > row.expected[0])
            << lines;
    }
    EXPECT_EQ(state(0, noFields + one + frame("ENT", 0) + integer(1).substr(0, 3)), (State{0, 0, 0}));
    EXPECT_EQ(state(0, header + one), (State{1, 1, 1})) << "no field chunk is no fields";
}

TEST_F(DataFile, Gel2dReadsItsRecordWhateverTheChunkEndAndWalksOnForward) {
    const std::string gel2d = counted("GEL2D-DEF-v1.0"), body = record(5, "T", "k");
    const int bodyStart = 27, fileEnd = 169;
    EXPECT_EQ(state(5, gel2d), (State{1, 1, 0}));
    for (const int end : {0, bodyStart - 9, bodyStart - 1, bodyStart, bodyStart + 1})
        EXPECT_EQ(state(5, gel2d + frame("KEY", end) + body), (State{0, 1, 1})) << end;
    for (const int end : {-1, INT_MIN, fileEnd, 5000, INT_MAX})
        EXPECT_EQ(state(5, gel2d + frame("KEY", end) + body), (State{1, 1, 1})) << end;

    std::string nested = gel2d; // the end of each chunk is the next frame, inside of its own record
    const int frames = 1000;
    for (int i = 1; i <= frames; ++i)
        nested += frame("KEY", 18 + 9 * i);
    EXPECT_EQ(state(5, nested), (State{1, 1, 1}));
    EXPECT_LT(logLines(), 6 * frames);
}
