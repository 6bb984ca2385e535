#include "reporting/log.h"

#include "databasetest.h"
#include "model/marker.h"
#include "platform/system/errors.h"

namespace {

class Log : public DatabaseTest {};

} // namespace

TEST_F(Log, HasHeadLinesAndTrailerAndBeginsAnew) {
    const std::string path = home / "TXLOG.TXT",
                      head = "\n     **************************\n     *         Log file       *\n"
                             "     **************************\n\n\n";
    startLog(1, home.path().c_str());
    logLine("100% %s %n\xff");
    logLine("");
    logLocalError("");
    logLocalError(std::string(386, 'a').c_str());
    logLocalError((std::string(386, 'b') + "beyond").c_str());
    EXPECT_EQ(readFile(path), head + "100% %s %n\xff\n\nLocal error: \nLocal error: " +
                                  std::string(386, 'a') + "\nLocal error: " + std::string(386, 'b') + "\n");
    EXPECT_EQ(startLog(1, home.path().c_str()), 1);
    endLog();
    EXPECT_EQ(readFile(path), head + "\n\n     ************************\n     *  End of TX log file  *\n"
                                     "     ************************\n");
    for (const int enabled : {0, 2}) {
        std::filesystem::remove(path);
        EXPECT_EQ(startLog(enabled, home.path().c_str()), 1);
        logLine("x");
        logLocalError("x");
        endLog();
        EXPECT_EQ(listTree(home.path()), Texts());
    }
}

TEST_F(Log, ThatCannotBeMadeIsReportedAndSoIsALineThatWasLost) {
    failAt(DiskOperation::open, 1);
    logLine("lost");
    logLine("kept");
    EXPECT_EQ(takeLog(), "kept\n");
    endLog();
    EXPECT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].find("Warning 48: 1 lines are missing in the log "), 0u);
    reports.clear();
    writeFile(home / "kept", "kept");
    std::filesystem::remove(home / "TXLOG.TXT");
    std::filesystem::create_symlink("kept", home / "TXLOG.TXT");
    EXPECT_EQ(startLog(1, home.path().c_str()), 0);
    EXPECT_EQ(readFile(home / "kept"), "kept");
    reports.clear();
    EXPECT_EQ(startLog(1, (root / "missing").c_str()), 0);
    EXPECT_EQ(reports, Texts{"Error 16: Could not create log file in ROOT/missing"});
}

TEST_F(Log, MarkerTellsWhoHoldsTheDatabaseAndWhatLiesBesideIt) {
    const HANDLE held = openMarker(root.path().c_str());
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(openMarker(root.path().c_str()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(
        lockFailureText(),
        "Unable to open the database\nThis database is probably opened by another person\n\n(Error code 32: "
        "The process cannot access the file because it is being used by another process.)");
    CloseHandle(held);
    EXPECT_EQ(openMarker((root / "missing").c_str()), INVALID_HANDLE_VALUE);
    EXPECT_EQ(lockFailureText(),
              "Unable to open the database\n\n(Error code 3: The system cannot find the path specified.)");
    SetLastError(9999);
    EXPECT_EQ(lockFailureText(), "Unable to open the database\n\n(Error code 9999: )");

    std::filesystem::create_directory(root / "a.xdb");
    EXPECT_EQ(hasConnectedDatabase(root.path().c_str()), 0);
    put("b.XDB", "");
    EXPECT_EQ(hasConnectedDatabase(root.path().c_str()), 1);
}
