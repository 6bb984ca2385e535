// What the disk itself costs: bare loops of the system calls that a step can't do without. Prints two lines
// with the name and the seconds, as bench_steps does.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

template <class Step> void measure(const char* name, Step step) {
    const auto start = Clock::now();
    const std::clock_t used = std::clock();
    step();
    std::printf("%s %.6f\n", name, std::chrono::duration<double>(Clock::now() - start).count());
    std::printf("%s-processor %.6f\n", name, static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC);
}

void put(int file, const std::string& bytes) {
    if (write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        std::abort();
}

void appendLines(const std::string& linesfile, const std::string& directory) {
    std::ifstream in(linesfile, std::ios::binary);
    const std::string path = directory + "/bare";
    measure("log", [&] {
        for (std::string line; std::getline(in, line);) {
            const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
            put(file, line + '\n');
            close(file);
        }
    });
}

// A thousand fields in each file of a directory.
void overwriteFields(const std::string& directory) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        paths.push_back(entry.path());
    measure("save", [&] {
        for (const std::string& path : paths) {
            const int file = open(path.c_str(), O_RDWR);
            for (int i = 0; i < 1000; ++i) {
                lseek(file, 50 + 70 * i, SEEK_SET);
                put(file, std::string(69, 'x'));
            }
            fdatasync(file);
            close(file);
        }
    });
}

void makeFiles(const std::string& directory, int files) {
    measure("make", [&] {
        for (int i = 0; i < files; ++i) {
            const int file = open(directory.c_str(), O_TMPFILE | O_WRONLY, 0666);
            put(file, std::string(41 + 69 * 100, 'x'));
            fsync(file);
            if (linkat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(file)).c_str(), AT_FDCWD,
                       (directory + "/" + std::to_string(i)).c_str(), AT_SYMLINK_FOLLOW) != 0)
                std::abort();
            close(file);
        }
        const int holder = open(directory.c_str(), O_RDONLY | O_DIRECTORY);
        fsync(holder);
        close(holder);
    });
}

} // namespace

int main(int argc, char** argv) {
    const std::string step = argc == 4 ? argv[1] : "";
    if (step == "log")
        appendLines(argv[2], argv[3]);
    else if (step == "save")
        overwriteFields(argv[2]);
    else if (step == "make")
        makeFiles(argv[2], std::atoi(argv[3]));
    else
        std::fprintf(stderr, "usage: bench_bare log LINES DIRECTORY | save DIRECTORY - | make DIRECTORY N\n");
    return step.empty() ? 2 : 0;
}
