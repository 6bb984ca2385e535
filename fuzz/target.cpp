// A fuzz target: reads a database that the input makes, and ends the process where a rule is broken. The last
// target also solves what can be solved, writes the keys back and reads again. TARGET is its place in the
// table.
#include <cstdio>

#include "invariants.h"
#include "places.h"
#include "reporting/report.h"
#include "tempdir.h"

namespace {

constexpr Target target = targets[TARGET];
constexpr bool repairs = TARGET == 3;

class Tree : public TempDir {
public:
    Tree() {
        for (const char* name : {"DBASE", "fprint", "images", "char", "seq", "matrix", "gel2d", "Library",
                                 "bundles", "Library/A.LIB"})
            std::filesystem::create_directory(*this / name);
        setReport([](const char*, const char*, std::uint32_t) { return 0; });
    }

    void fill(std::string_view input) {
        for (std::size_t length; input.size() >= 3; input.remove_prefix(3 + length)) {
            const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(input[i]); };
            length = std::min<std::size_t>(byte(1) + 256U * byte(2), input.size() - 3);
            writeFile(*this / places[target.first + byte(0) % target.count], input.substr(3, length));
        }
    }

    void empty() {
        for (const std::string& name : listTree(path()))
            if (name.back() != '/')
                std::filesystem::remove(*this / name);
    }
};

void require(TSXdatabase& database) {
    if (const char* rule = brokenRule(database)) {
        std::fprintf(stderr, "broken: %s\n", rule);
        std::abort();
    }
}

// Some problems stay whatever is done, so each row is solved in turn, by the last of its solutions.
void solveAll(TSXdatabase& database) {
    for (int row = 1, steps = 0; row <= database.problemcount && steps < 20; ++steps) {
        const int before = database.problemcount;
        const TSXproblem& problem = *database.getproblem(row);
        problem.solve(problem.solutioncount());
        database.analyse();
        require(database);
        if (database.problemcount >= before)
            ++row;
    }
    for (const auto& list : database.lists) // as saveall, which also waits for the disk
        for (std::size_t i = 1; i < list->files.size(); ++i)
            list->files[i]->writeback();
    require(database);
}

void load(const std::string& root, bool solve) {
    TSXdatabase database("");
    database.load(root.c_str());
    require(database);
    if (solve)
        solveAll(database);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    static Tree tree;
    tree.fill({data, size});
    load(tree.path(), repairs);
    if (repairs)
        load(tree.path(), false);
    tree.empty();
    return 0;
}
