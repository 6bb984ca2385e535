// Times the steps of a run and prints two lines for each: its name and its seconds, and those of the
// processor.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>

#include <malloc.h>
#include <sys/resource.h>

#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "reporting/log.h"

namespace {

using Clock = std::chrono::steady_clock;

template <class Step> void measure(const char* name, Step step) {
    const auto start = Clock::now();
    const std::clock_t used = std::clock();
    step();
    std::printf("%s %.6f\n", name, std::chrono::duration<double>(Clock::now() - start).count());
    std::printf("%s-processor %.6f\n", name, static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC);
}

template <class Operation> void forEachFile(const TSXdatabase& database, Operation operation) {
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            operation(*list->files[i]);
}

// The keys, one a line in the order of the files, so that other programs can be timed with the same keys.
void writeKeys(const TSXdatabase& database, const char* path) {
    std::ofstream out(path, std::ios::binary);
    forEachFile(database, [&](const TSXdatafile& file) {
        for (std::size_t r = 1; r < file.keys.size(); ++r)
            out << file.keys[r] << '\n';
    });
}

// Reading the files, the analysis that ends a load, and another one after a repair.
void measureLoad(const char* path, const char* keyfile) {
    TSXdatabase database("");
    measure("load", [&] { database.readlists(path); });
    measure("analysis", [&] { database.analyse(); });
    writeKeys(database, keyfile);
    database.renameduplicates(0);
    database.keyschanged();
    measure("again", [&] { database.analyse(); });
    measure("looks", [&] { database.analyse(); });
}

void measureLog(const char* linesfile, const char* directory) {
    std::ifstream in(linesfile, std::ios::binary);
    startLog(1, directory);
    measure("log", [&] {
        for (std::string line; std::getline(in, line);)
            logLine(line.c_str());
    });
}

void addFiles(TSXdatabase& database, int records, bool distinct) {
    TSXfilelist& list = *database.lists[0];
    for (int i = 0; i < records; ++i) {
        if (i % maxrecords == 0)
            list.newfile();
        list.files.back()->addentry(distinct ? std::to_string(i).c_str() : "same");
    }
    database.analyse();
}

// Repairs of so many records of an empty database, which has to stand there.
void measureRepairs(const char* path, int records) {
    TSXdatabase database("");
    database.readlists(path);
    addFiles(database, records, false);
    measure("rename", [&] { database.renameduplicates(0); });
    forEachFile(database, [](TSXdatafile& file) {
        for (int r = 1; r <= file.keycount; ++r)
            file.clearkey(r);
    });
    database.analyse();
    measure("create", [&] { database.createkeys(); });
    TSXdatabase orphans("");
    orphans.readlists(path);
    orphans.addexptype(1, "type");
    addFiles(orphans, records / 2, true); // each hundred makes a file, of at most 3000
    forEachFile(orphans, [](TSXdatafile& file) { file.keytypes.assign(file.keytypes.size(), 1); });
    orphans.keyschanged();
    orphans.analyse();
    measure("add", [&] { orphans.adddatabaseentries(); });
}

void save(TSXdatabase& database) {
    if (database.saveall() == 0)
        std::exit(1);
}

// Changes every key and saves, with an undo file where that is asked for.
void measureSave(const char* path, bool undo) {
    TSXdatabase database("");
    database.load(path);
    database.committer = std::make_unique<Committer>(database.tree, CommitOptions{.keepundo = undo});
    forEachFile(database, [](TSXdatafile& file) {
        for (int r = 1; r <= file.keycount; ++r)
            file.setkey(r, (std::to_string(r) + " changed").c_str());
    });
    measure("save", [&] { save(database); });
}

// The entries that all have one key, on the disk.
void makeEqual(const char* path, int records) {
    TSXdatabase database("");
    database.readlists(path);
    addFiles(database, records, false);
    save(database);
}

// Makes new files with a hundred entries each.
void measureNewFiles(const char* path, int files) {
    TSXdatabase database("");
    database.readlists(path);
    TSXfilelist& list = *database.lists[0];
    for (int i = 0; i < files; ++i) {
        list.newfile();
        for (int r = 0; r < 100; ++r)
            list.files.back()->addentry(std::to_string(i * 100 + r).c_str());
    }
    measure("make", [&] { save(database); });
}

// What a problem of the database takes.
void measureProblems(const char* path) {
    TSXdatabase database("");
    database.load(path);
    const double taken = static_cast<double>(mallinfo2().uordblks), count = database.problemcount;
    database.clearproblems();
    std::printf("kilobytes %.6f\n", (taken - static_cast<double>(mallinfo2().uordblks)) / count / 1024);
}

// The largest database there can be, every key of its own, in memory: what it takes at its height, in GiB.
void measureMemory(const char* path, int types) {
    TSXdatabase database("");
    database.readlists(path);
    for (int type = 1; type <= types; ++type)
        database.addexptype(1, std::to_string(type).c_str());
    int key = 0;
    for (const auto& list : database.lists)
        for (int i = 0; i < maxfiles; ++i) {
            auto file = std::make_unique<TSXdatafile>(database, *list, std::to_string(i).c_str(), 0);
            for (auto* table : {&file->keytypes, &file->keypos, &file->keydirty})
                table->reserve(maxrecords + 1);
            file->keys.reserve(maxrecords + 1);
            for (int r = 0; r < maxrecords; ++r)
                file->addentry(Text<60>().format("Isolate %08d (ref) A", ++key));
            file->keysondisk.clear(); // as of records that were read
            file->keysondisk.shrink_to_fit();
            if (list != database.lists[0])
                for (int r = 1; r <= maxrecords; ++r)
                    file->keytypes[static_cast<std::size_t>(r)] = 1 + r % types;
            list->files.push_back(std::move(file));
            ++list->count;
        }
    database.analyse();
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("memory %.6f\n", static_cast<double>(usage.ru_maxrss) / (1 << 20));
}

bool run(const std::string& step, const char* first, const char* second) {
    if (step == "load")
        measureLoad(first, second);
    else if (step == "log")
        measureLog(first, second);
    else if (step == "repairs")
        measureRepairs(first, std::atoi(second));
    else if (step == "save")
        measureSave(first, std::strcmp(second, "undo") == 0);
    else if (step == "make")
        measureNewFiles(first, std::atoi(second));
    else if (step == "problems")
        measureProblems(first);
    else if (step == "equal")
        makeEqual(first, std::atoi(second));
    else if (step == "memory")
        measureMemory(first, std::atoi(second));
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 4 && run(argv[1], argv[2], argv[3]))
        return 0;
    std::fprintf(stderr,
                 "usage: bench_steps load DATABASE KEYFILE | log LINES DIRECTORY | repairs DATABASE N | "
                 "save DATABASE -|undo | make DATABASE N | equal DATABASE N | problems DATABASE - | memory "
                 "DATABASE TYPES\n");
    return 2;
}
