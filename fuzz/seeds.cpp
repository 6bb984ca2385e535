// Makes the first inputs of each fuzz target from two small samples, a sound one and one with every damage.
#include <cstdio>

#include "places.h"
#include "sample.h"
#include "tempdir.h"
#include "undo/undowriter.h"

namespace {

namespace fs = std::filesystem;

// The file as a part of an input; nothing where the target takes no file of its directory and extension.
std::string packed(const Target& target, const fs::path& name, const std::string& content) {
    for (int i = 0; i < target.count; ++i) {
        const fs::path place = places[target.first + i];
        if (place.parent_path() == name.parent_path() && place.extension() == name.extension())
            return {static_cast<char>(i), static_cast<char>(content.size()),
                    static_cast<char>(content.size() >> 8)};
    }
    return {};
}

// An input for each file, and one for all.
void writeSeeds(const std::string& corpus, const Target& target, const TempDir& sample, const char* kind) {
    const std::string stem = corpus + "/" + target.name + "/" + kind;
    fs::create_directories(corpus + "/" + target.name);
    std::string all;
    for (const std::string& name : listTree(sample.path())) {
        const std::string content = name.back() == '/' ? "" : readFile(sample / name);
        const std::string head = packed(target, name, content);
        if (head.empty())
            continue;
        writeFile(stem + std::to_string(all.size()), head + content);
        all += head + content;
    }
    writeFile(stem + "-all", all);
}

// The items of an undo file of the small database of that target, as of a finished and an interrupted run.
bool writeUndoSeeds(const std::string& corpus) {
    const TempDir place;
    const std::string undo = place / "seed.undo", database = place / "database";
    setenv("XDG_STATE_HOME", place.path().c_str(), 1);
    fs::create_directories(database + "/DBASE");
    fs::create_directories(corpus + "/fuzz_undo");
    writeFile(database + "/DBASE/A.DBS", std::string(200, 'a'));
    writeFile(database + "/DBASE/B.DBS", std::string(100, 'b'));
    UndoWriter writer(database, undo);
    const bool kept = writer.addKeys("DBASE/A.DBS", {{1, 7, std::string(69, 'a'), std::string(69, 'c')}}) &&
                      writer.addDeletion("DBASE/B.DBS") && writer.addMaking("DBASE/C.DBS") && writer.commit();
    writeFile(database + "/DBASE/C.DBS", "c");
    UndoFile file;
    if (!kept || !writer.finish() || !readUndoFile(undo, file).empty())
        return false;
    const std::string items =
        file.bytes.substr(UndoHeader::size + 8 + file.directory.size() + file.program.size());
    for (const char* first : {"0", "1"})
        writeFile(corpus + "/fuzz_undo/" + first, first + items);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    for (const char* damage : {"none", "all"}) {
        const TempDir sample;
        SampleOptions options;
        options.directory = sample.path();
        options.files = options.types = options.experiments = options.fields = 1;
        options.entries = options.records = 3;
        if (std::string(damage) == "all")
            options.damages = {damage};
        const std::string failure = argc == 2 ? makeSample(options).failure : "usage: fuzz_seeds CORPUS";
        if (!failure.empty()) {
            std::fprintf(stderr, "%s\n", failure.c_str());
            return 1;
        }
        for (const Target& target : targets)
            writeSeeds(argv[1], target, sample, damage);
    }
    fs::create_directories(std::string(argv[1]) + "/fuzz_settings");
    writeFile(std::string(argv[1]) + "/fuzz_settings/0", "[DIR]\n/a/b\n[BACKCOL]\n1 -2 192\n[OTHER]\nx\n");
    return writeUndoSeeds(argv[1]) ? 0 : 1;
}
