#include "databasetest.h"

namespace {

class Writeback : public DatabaseTest {
protected:
    // Changes two of three keys of a file while one operation fails, which must cost no more than its key.
    void changeWithFault(DiskOperation kind, std::size_t failed) {
        std::string expected = dataFile(2, "T", {"a", "b", "c"});
        put(2, "A", expected);
        load();
        takeLog();
        TSXdatafile& changed = file(2, 1);
        changed.setkey(1, "first");
        changed.setkey(3, "third");
        const std::size_t written = 4 - failed;
        expected.replace(static_cast<std::size_t>(changed.keypos[written]), 69, field(changed.keys[written]));
        failAt(kind, failed == 1 ? 1 : 2);
        changed.writeback();
        EXPECT_EQ(readFile(changed.path.c_str()), expected) << failed;
        EXPECT_EQ(reports, Texts());
    }
};

const std::string longKey(60, 'x');

} // namespace

TEST_F(Writeback, TouchesNothingButTheFieldsOfChangedKeys) {
    for (int fileclass = 0; fileclass < 6; ++fileclass)
        put(fileclass, "A", dataFile(fileclass, "T", fileclass == 5 ? Texts{"one"} : Texts{"one", "two"}));
    // An entry with values, and a key field that is wider than others.
    std::string values = counted("TX-DBS-v1.0"),
                entry = integer(3) + integer(70) + "key" + std::string(67, '\x7f');
    addChunk(values, "FLD", integer(3) + counted("a") + counted("") + counted("c"));
    addChunk(values, "ENT", integer(1) + entry + counted(std::string(299, 'v')) + counted("") + counted("w"));
    addChunk(values, "END", "tail");
    put(0, "B", values);
    load();
    for (int fileclass = 0; fileclass < 7; ++fileclass) {
        TSXdatafile& changed = fileclass < 6 ? file(fileclass, 1) : file(0, 2);
        std::string expected = readFile(changed.path.c_str());
        for (const int i : {0, changed.keycount + 1, -1})
            changed.setkey(i, "nowhere");
        EXPECT_EQ(changed.valid * 10 + changed.anydirty(), 10);
        for (const std::string& key : {longKey, std::string()}) {
            changed.setkey(1, key.c_str());
            expected.replace(static_cast<std::size_t>(changed.keypos[1]), 69, field(key));
            changed.writeback();
            EXPECT_EQ(readFile(changed.path.c_str()), expected) << fileclass;
        }
        EXPECT_EQ(changed.anydirty(), 0);
    }
    load();
    EXPECT_EQ(keysOf(file(4, 1)), (Texts{"", "two"}));
}

// The key goes to its offset as a whole field, also where the file ends in it; what could not be read stays
// as it is.
TEST_F(Writeback, OfARecordThatWasCutOff) {
    const std::string start = counted("TX-DBS-v1.0") + frame("ENT", 0) + integer(2);
    put(0, "A", start + field("a").substr(0, 10));
    load();
    file(0, 1).setkey(1, "b");
    file(0, 1).setkey(2, "c");
    database->saveall();
    EXPECT_EQ(readFile(root / "DBASE/A.DBS"), start + field("b"));
    EXPECT_EQ(database->unread.size(), 1u);
    EXPECT_TRUE(file(0, 1).isunread(2) && !file(0, 1).isunread(1) && database->picturecomplete());
}

TEST_F(Writeback, WritesANewFileWholeAndThenInPlace) {
    load();
    TSXdatafile& made = newFile(Texts(1001, "k"));
    made.setkey(1000, longKey.c_str());
    made.clearkey(2);
    EXPECT_EQ(made.keypos[1000], -1);
    EXPECT_EQ(database->ismodified(), 1);
    database->saveall();
    EXPECT_EQ(database->ismodified(), 0);
    std::string expected = counted("TX-DBS-v1.0"), entries = integer(1000);
    for (int i = 1; i <= 1000; ++i)
        entries += field(i == 2 ? "" : i == 1000 ? longKey : "k");
    addChunk(expected, "FLD", integer(0));
    addChunk(expected, "ENT", entries);
    EXPECT_EQ(readFile(made.path.c_str()), expected);
    EXPECT_EQ(made.keypos[1000], 41 + 69 * 999);
    made.setkey(1, "other");
    database->saveall();
    EXPECT_EQ(readFile(made.path.c_str()), expected.replace(41, 69, field("other")));
}

TEST_F(Writeback, AFileThatCannotBeOpenedIsReportedAndStaysChanged) {
    put(1, "A", dataFile(1, "T", {"a", "b"}));
    load();
    file(1, 1).clearkey(1);
    newFile({"n"});
    for (const char* name : {"fprint", "DBASE"})
        std::filesystem::rename(root / name, root / (std::string("away-") + name));
    database->saveall();
    EXPECT_EQ(reports, (Texts{"Error 48: Could not write to file 'ROOT/DBASE/DBSF001.DBS'",
                              "Error 48: Could not write in file 'ROOT/fprint/A.DEF'"}));
    EXPECT_EQ(file(1, 1).anydirty() + file(0, 1).anydirty() + file(0, 1).ondisk, 2);
    for (const char* name : {"fprint", "DBASE"})
        std::filesystem::rename(root / (std::string("away-") + name), root / name);
    database->saveall();
    EXPECT_EQ(reports.size(), 2u);
    EXPECT_EQ(database->ismodified(), 0);
    load();
    EXPECT_EQ(keysOf(file(1, 1)), (Texts{"", "b"}));
    EXPECT_EQ(keysOf(file(0, 1)), Texts{"n"});
}

TEST_F(Writeback, AFailedWriteHarmsNothingElse) {
    for (const std::size_t failed : {1u, 3u}) {
        changeWithFault(DiskOperation::write, failed);
        EXPECT_EQ(takeLog(), "Local error: TSXbinfile: could not write string to ROOT/char/A.DEF\n");
        EXPECT_EQ(file(2, 1).anydirty(), 0);
    }
}

TEST_F(Writeback, AFailedSeekHarmsNothingElse) {
    for (const std::size_t failed : {1u, 3u})
        changeWithFault(DiskOperation::seek, failed);
}

// A new file is there whole or not at all, and one that is not there has left a line.
TEST_F(Writeback, AFailedWriteOfANewFile) {
    bool failed = true;
    for (int number = 1; failed; ++number) {
        load();
        TSXdatafile& made = newFile({"a", "b"});
        takeLog();
        failAt(DiskOperation::write, number);
        made.writeback();
        failed = faultyNumber <= 0;
        EXPECT_EQ(std::filesystem::exists(made.path.c_str()), !failed) << number;
        EXPECT_EQ(takeLog().find("ROOT/DBASE/DBSF001.DBS") != std::string::npos, failed) << number;
        EXPECT_EQ(made.anydirty(), 0);
    }
    EXPECT_EQ(reports, Texts());
}
