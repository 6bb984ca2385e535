#include "platform/system/startprogram.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "child.h"
#include "tempdir.h"

namespace {

// A program that leaves its place, its arguments and its input in the file "ran" of the current directory,
// unless it is in the session of the test, whose end would be its own.
void putProgram(const std::string& path, const char* interpreter = "/bin/sh") {
    writeFile(path,
              std::string("#!") + interpreter +
                  "\n[ `cut -d' ' -f6 /proc/$$/stat` != $SESSION ] && echo $0 $# `cat` >new; mv new ran\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

} // namespace

TEST(StartProgram, LooksInTheCurrentDirectoryAndThenInThePath) {
    const TempDir here;
    const TempDir there;
    setenv("SESSION", std::to_string(getsid(0)).c_str(), 1);
    EXPECT_EQ(inChild([&] {
                  setenv("PATH", ("/nowhere::" + there.path() + ":/bin:/usr/bin").c_str(), 1);
                  return chdir(here.path().c_str()) == 0 && WinExec("program") == 2 ? 0 : 1;
              }),
              0);
    std::filesystem::create_directory(there / "program"); // neither a directory nor what can't be run counts
    writeFile(here / "program", "no program");
    for (const std::string& place : {there.path(), here.path()}) {
        std::filesystem::remove(place + "/program");
        putProgram(place + "/program");
        const int started = inChild([&] {
            setenv("PATH", (there.path() + ":/bin:/usr/bin").c_str(), 1);
            return chdir(here.path().c_str()) == 0 ? WinExec("program") : 0;
        });
        EXPECT_GT(started, 31);
        for (int i = 0; i < 600 && !std::filesystem::exists(here / "ran"); ++i)
            usleep(50000);
        EXPECT_EQ(readFile(here / "ran"), (place == here.path() ? "./program" : place + "/program") + " 0\n");
        std::filesystem::remove(here / "ran");
    }
    putProgram(here / "program", "/nowhere/interpreter");
    EXPECT_EQ(inChild([&] { return chdir(here.path().c_str()) == 0 ? WinExec("program") : 0; }), 2);
}
