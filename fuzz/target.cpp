// The fuzz targets: each reads what the input makes, and ends the process where a rule is broken. TARGET is
// the number of the one that is built.
#include <cstdio>
#include <cstring>

#include "changes/frames.h"
#include "changes/restore.h"
#include "files/settingsfile.h"
#include "invariants.h"
#include "reporting/notify.h"
#include "tempdir.h"

namespace {

namespace fs = std::filesystem;

// The form of an input of a database: any number of files, each a byte for its place, two for its length, low
// byte first, and its content. A target takes some of the places, and numbers them from its first.
constexpr const char* places[] = {"DBASE/A.DBS", "DBASE/B.DBS",        "fprint/A.DEF", "char/A.DEF",
                                  "seq/A.DEF",   "matrix/A.DEF",       "gel2d/A.DEF",  "fprint/A.CNF",
                                  "char/A.CNF",  "seq/A.CNF",          "matrix/A.CNF", "gel2d/A.CNF",
                                  "A.CMP",       "Library/A.LIB/A.CMP"};
constexpr struct {
    const char* name;
    int first, count;
} targets[] = {{"fuzz_dbs", 0, 2},   {"fuzz_def", 2, 5},  {"fuzz_sidefiles", 7, 7},
               {"fuzz_tree", 0, 14}, {"fuzz_undo", 0, 0}, {"fuzz_settings", 0, 0}};

void require(const char* broken) {
    if (broken == nullptr)
        return;
    std::fprintf(stderr, "broken: %s\n", broken);
    std::abort();
}

// Some problems stay whatever is done, so each row is solved in turn, by the last of its solutions.
void solveAll(TSXdatabase& database) {
    for (int row = 1, steps = 0; row <= database.problemcount && steps < 20; ++steps) {
        const int before = database.problemcount;
        const TSXproblem& problem = *database.getproblem(row);
        problem.solve(problem.solutioncount());
        database.analyse();
        require(brokenRule(database));
        if (database.problemcount >= before)
            ++row;
    }
    database.saveall();
    require(brokenRule(database));
}

// Reads a database; the one with all places also solves what can be solved, writes the keys back and reads
// again.
void readDatabase(std::string_view input) {
    const auto& target = targets[TARGET];
    static const TempDir root;
    for (const char* place : places)
        fs::create_directories(fs::path(root / place).parent_path());
    for (std::size_t length; input.size() >= 3; input.remove_prefix(3 + length)) {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(input[i]); };
        length = std::min<std::size_t>(byte(1) + 256U * byte(2), input.size() - 3);
        writeFile(root / places[target.first + byte(0) % std::max(target.count, 1)], input.substr(3, length));
    }
    const bool repairs = target.count == std::size(places);
    for (const bool again : {false, true}) {
        TSXdatabase database("");
        database.load(root.path().c_str());
        require(brokenRule(database));
        if (repairs && !again)
            solveAll(database);
    }
    for (const std::string& name : listTree(root.path()))
        if (name.back() != '/')
            fs::remove(root / name);
}

// Writes an undo file of the database whose frames are the input, each with a sound checksum. A frame is its
// kind, two bytes of length, low byte first, and its bytes.
void writeUndoFile(const TempDir& place, std::string_view input) {
    Tree tree;
    NewFile made;
    auto position = static_cast<std::int64_t>(UndoHeader::size);
    if (tree.open(place.path()) || tree.make("a.undo", made, Rights::ownerOnly) ||
        writehead(made.file, position, place / "database"))
        std::abort();
    FrameWriter frames(made.file, position);
    Decoder from(input);
    while (from.good && !from.rest.empty()) {
        const auto kind = from.number<std::uint8_t>();
        const std::string_view bytes = from.take(from.number<std::uint16_t>());
        if (from.good)
            frames.add(static_cast<FrameKind>(kind), bytes);
    }
    UndoHeader header;
    if (frames.end(position))
        std::abort();
    header.length = header.finished = static_cast<std::uint64_t>(position);
    if (made.file.write(0, header.encode()) || made.keep())
        std::abort();
}

// Restores by it a copy of the database that DATABASE names.
void restoreDatabase(std::string_view input) {
    static const TempDir place;
    fs::remove_all(place / "database");
    fs::remove(place / "a.undo");
    fs::copy(std::getenv("DATABASE"), place / "database", fs::copy_options::recursive);
    writeUndoFile(place, input);
    const auto tree = std::make_shared<Tree>();
    if (!tree->open(place / "database"))
        restore(tree, {.undofile = place / "a.undo", .yes = true, .commit = {.keepundo = false}});
    std::vector<std::string> names = listTree(place.path());
    std::erase_if(names, [](const std::string& name) { return name.starts_with("database/"); });
    require(names == std::vector<std::string>{"a.undo"} ? nullptr : "a restore stays inside of its database");
}

void readSettings(std::string_view input) {
    static const TempDir home;
    DatabaseSettings found;
    found.homeDirectory = home.path().c_str();
    found.currentDatabase = "A";
    writeFile(settingsFilePath(found), input);
    if (!readSettingsFile(found) || std::strlen(found.databaseDirectory.c_str()) > maxsettingsline - 1)
        return;
    DatabaseSettings again = found;
    again.databaseDirectory = "";
    const bool same =
        writeSettingsFile(found) && readSettingsFile(again) &&
        std::strcmp(again.databaseDirectory.c_str(), found.databaseDirectory.c_str()) == 0 &&
        std::memcmp(again.backgroundColour, found.backgroundColour, sizeof found.backgroundColour) == 0;
    require(same ? nullptr : "settings are read as they were written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    setNotifier([](const char*, const char*, std::uint32_t) { return 0; });
    constexpr void (*kinds[])(std::string_view) = {readDatabase, restoreDatabase, readSettings};
    kinds[std::max(TARGET - 3, 0)]({data, size});
    return 0;
}
