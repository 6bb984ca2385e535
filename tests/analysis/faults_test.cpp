// A run that repairs and saves a small damaged database, once whole and then with each of its disk operations
// in turn failing, or being the last that the process comes to.
#include <map>
#include <set>

#include "databasetest.h"
#include "platform/system/bytestream.h"
#include "platform/system/faults.h"
#include "sample.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Tree = std::map<std::string, std::string>; // path below the root: content

DiskOperation faultyKind;
int faultyNumber = 0;
bool faultyEnds = false;

bool isFaulty(DiskOperation operation) {
    const bool faulty = operation == faultyKind && --faultyNumber == 0;
    if (faulty && faultyEnds)
        _exit(0);
    return faulty;
}

class DiskFaults : public DatabaseTest {
protected:
    DiskFaults() {
        SampleOptions options;
        options.directory = sample.path();
        options.files = options.types = options.experiments = options.fields = 1;
        options.entries = options.records = 2;
        options.damages = {"all"};
        EXPECT_EQ(makeSample(options).failure, "");
        old = tree(sample.path());
    }

    static Tree tree(const std::string& directory) {
        Tree found;
        for (const std::string& path : listTree(directory))
            found[path] = path.back() == '/' ? "" : readFile(directory + "/" + path);
        return found;
    }

    void reset() {
        std::filesystem::remove_all(root.path());
        std::filesystem::copy(sample.path(), root.path(), std::filesystem::copy_options::recursive);
        reports.clear();
    }

    // Each problem once, by the last of its solutions, and the save. Whether a failure was told.
    bool repairAndSave() {
        const int failures = failedWrites();
        load();
        std::set<std::string> taken;
        for (int row = 1; row <= database->problemcount;) {
            const TSXproblem& problem = *database->getproblem(row);
            if (!taken.insert(problem.message.c_str()).second) {
                ++row;
                continue;
            }
            problem.solve(problem.solutioncount());
            database->analyse();
            row = 1;
        }
        database->saveall();
        for (const Change& change : database->changes) { // what is told stands on the disk
            const auto text = static_cast<std::size_t>(change.offset) + 8;
            EXPECT_TRUE(change.kind != Change::key ||
                        readFile(root / change.file).compare(text, change.newkey.size(), change.newkey) == 0);
        }
        return !reports.empty() || failedWrites() > failures;
    }

    // Whether the failure of that operation was told.
    bool failAt(int number) {
        reset();
        faultyEnds = false;
        faultyNumber = number;
        diskFaultHook = isFaulty;
        const bool told = repairAndSave();
        diskFaultHook = nullptr;
        return told;
    }

    void endAt(int number) {
        reset();
        const pid_t child = fork();
        if (child == 0) {
            faultyEnds = true;
            faultyNumber = number;
            diskFaultHook = isFaulty;
            repairAndSave();
            _exit(0);
        }
        waitpid(child, nullptr, 0);
    }

    // Where the key fields of each file stand, as it was read.
    void rememberFields() {
        for (const auto& list : database->lists)
            for (std::size_t i = 1; i < list->files.size(); ++i) {
                const std::filesystem::path path = list->files[i]->path.c_str();
                auto& places = fields[path.lexically_relative(root.path()).string()];
                places.assign(list->files[i]->keypos.begin(), list->files[i]->keypos.end());
            }
    }

    // Each key field is old or new, all else is old; a new file is whole; what the whole run leaves is there.
    void expectOldOrNew() {
        const Tree found = tree(root.path());
        for (const auto& [path, content] : found) {
            std::string expected = old.count(path) != 0 ? old.at(path) : whole.at(path);
            for (const auto place : old.count(path) != 0 ? fields[path] : std::vector<std::int32_t>())
                if (place > 0 && content.substr(static_cast<std::size_t>(place), 69) ==
                                     whole.at(path).substr(static_cast<std::size_t>(place), 69))
                    expected.replace(static_cast<std::size_t>(place), 69, whole.at(path),
                                     static_cast<std::size_t>(place), 69);
            EXPECT_EQ(content, expected) << path;
        }
        for (const auto& [path, content] : old)
            EXPECT_TRUE(found.count(path) != 0 || whole.count(path) == 0) << path;
    }

    TempDir sample;
    Tree old, whole;
    std::map<std::string, std::vector<std::int32_t>> fields;
};

} // namespace

TEST_F(DiskFaults, LeaveEachKeyOldOrNewAndAreTold) {
    reset();
    ASSERT_FALSE(repairAndSave());
    rememberFields();
    whole = tree(root.path());
    ASSERT_NE(whole, old);
    for (const DiskOperation kind :
         {DiskOperation::write, DiskOperation::sync, DiskOperation::makeDirectory}) {
        faultyKind = kind;
        bool happened = true;
        for (int number = 1; happened; ++number) {
            SCOPED_TRACE(testing::Message() << "kind " << static_cast<int>(kind) << ", " << number);
            endAt(number);
            expectOldOrNew();
            const bool told = failAt(number);
            expectOldOrNew();
            happened = faultyNumber <= 0;
            EXPECT_TRUE(told || database->ismodified() == 1 || tree(root.path()) == whole);
            EXPECT_EQ(database->saveall(), 1) << "the disk is well again";
            expectOldOrNew();
        }
    }
}
