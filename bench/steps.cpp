// Times the steps of a run over one database and prints a line of seconds for each: reading the files, the
// analysis that ends a load, renaming all duplicate keys of the database entries, and saving. The keys are
// written to a file, one a line in the order of the files, so that other programs can be timed with the same
// keys.
#include <chrono>
#include <cstdio>
#include <fstream>

#include "model/database.h"
#include "model/datafile.h"
#include "reporting/log.h"

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void writeKeys(const TSXdatabase& database, const char* path) {
    std::ofstream out(path, std::ios::binary);
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            for (std::size_t r = 1; r < list->files[i]->keys.size(); ++r)
                out << list->files[i]->keys[r] << '\n';
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::fprintf(stderr, "usage: bench_steps DATABASE KEYFILE [LOG-DIRECTORY]\n");
        return 2;
    }
    if (argc == 4 && startLog(1, argv[3]) == 0)
        return 1;
    TSXdatabase database("");
    const auto start = Clock::now();
    double load = 0;
    database.fileread = [&](const TSXdatafile&) { load = secondsSince(start); };
    database.load(argv[1]);
    const double analysis = secondsSince(start) - load;
    writeKeys(database, argv[2]);
    const auto renameStart = Clock::now();
    database.renameduplicates(0);
    const double rename = secondsSince(renameStart);
    const auto saveStart = Clock::now();
    if (database.saveall() == 0)
        return 1;
    const double save = secondsSince(saveStart);
    std::printf("load %.4f\nanalysis %.4f\nrename %.4f\nsave %.4f\n", load, analysis, rename, save);
    return 0;
}
