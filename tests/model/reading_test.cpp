#include "databasetest.h"
#include "platform/system/faults.h"

// Another program writes while a file is read: once, and then at each read.
TEST_F(DatabaseTest, AFileIsReadAsItStaysOrNotAtAll) {
    static int reads, last;
    static const std::string path = root / "DBASE/A.DBS";
    diskFaultHook = [](DiskOperation operation) {
        if (operation == DiskOperation::read && ++reads >= 3 && reads <= last) // the file is open
            writeFile(path, dataFile(0, "", Texts(static_cast<std::size_t>(reads % 7 + 1), "x")));
        return false;
    };
    for (const int until : {3, 100000}) {
        put(0, "A", dataFile(0, "", {"a"}));
        reads = 0;
        last = until;
        EXPECT_EQ(load().isunread(path), until > 3);
        EXPECT_TRUE(until > 3 || keysOf(*database->lists[0]->files[1]) == Texts(4, "x")) << "read once more";
    }
    diskFaultHook = nullptr;
}
