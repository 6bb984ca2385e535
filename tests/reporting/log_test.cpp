#include "reporting/log.h"

#include "databasetest.h"
#include "platform/system/errors.h"
#include "platform/system/faults.h"

namespace {

class Log : public DatabaseTest {};

} // namespace

TEST_F(Log, TakesLinesAsTheyStandAndBeginsAnew) {
    const std::string path = root / "TXLOG.TXT";
    EXPECT_EQ(startLog(1, root.path().c_str()), 1);
    const std::string head = readFile(path);
    logLine("100% %s %n\xff");
    logLine("");
    logLocalError((std::string(386, 'b') + "beyond").c_str());
    EXPECT_EQ(readFile(path), head + "100% %s %n\xff\n\nLocal error: " + std::string(386, 'b') + "\n");
    startLog(1, root.path().c_str());
    EXPECT_EQ(readFile(path), head);
    for (const int enabled : {0, 2}) {
        EXPECT_EQ(startLog(enabled, root.path().c_str()), 1);
        logLine("x");
        logLocalError("x");
        endLog();
        EXPECT_EQ(readFile(path), head);
    }
    startLog(1, root.path().c_str());
    diskFaultHook = [](DiskOperation operation) { return operation == DiskOperation::open; };
    logLine("lost");
    diskFaultHook = nullptr;
    logLine("kept");
    EXPECT_EQ(readFile(path), head + "kept\n");
    endLog();
    EXPECT_EQ(reports, Texts{"Warning 48: 1 line is missing in the log '" + root.path() +
                             "\\TXLOG.TXT' because it could not be written: " + errorText(ERROR_IO_DEVICE)});
    std::filesystem::remove(path);
    std::filesystem::create_symlink("kept", path);
    EXPECT_EQ(startLog(1, root.path().c_str()), 0);
    EXPECT_FALSE(std::filesystem::exists(root / "kept"));
    reports.clear();
    EXPECT_EQ(startLog(1, (root / "missing").c_str()), 0);
    EXPECT_EQ(reports, Texts{"Error 16: Could not create log file in " + (root / "missing")});
}
