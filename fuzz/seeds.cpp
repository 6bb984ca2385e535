// Makes the first inputs of each fuzz target from two small samples, a sound one and one with every damage.
#include <cstdio>

#include "changes/carryout.h"
#include "changes/frames.h"
#include "changes/undowriter.h"
#include "places.h"
#include "sample.h"
#include "tempdir.h"

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

// The frames of an undo file of the small database of that target.
bool writeUndoSeeds(const std::string& corpus) {
    const TempDir place;
    setenv("XDG_STATE_HOME", place.path().c_str(), 1);
    fs::create_directories(place / "database/DBASE");
    fs::create_directories(corpus + "/fuzz_undo");
    writeFile(place / "database/DBASE/A.DBS", std::string(200, 'a'));
    writeFile(place / "database/DBASE/B.DBS", std::string(100, 'b'));
    Tree tree;
    std::vector<Change> group(3);
    group[0].file = "DBASE/A.DBS";
    group[0].sizeafter = 200;
    addfield(group[0], 1, 7, std::string(69, 'a'), std::string(69, 'c'));
    group[1] = deletionof("DBASE/B.DBS", {});
    group[2] = makingof("DBASE/C.DBS", EntryState::plain, contentOf(std::string("c")));
    UndoWriter writer("", false);
    if (tree.open(place / "database") || draftdeletion(tree, {}, group[1]) ||
        !writer.keep(tree, group).empty())
        return false;
    const std::string bytes = readFile(writer.path());
    std::string seed;
    Decoder from(std::string_view(bytes).substr(UndoHeader::size));
    while (from.good && !from.rest.empty()) {
        const auto kind = from.number<std::uint8_t>();
        const auto length = from.number<std::uint32_t>();
        from.number<std::uint32_t>();
        const std::string_view frame = from.take(length);
        if (kind != static_cast<std::uint8_t>(FrameKind::head))
            seed +=
                Encoder().number(kind).number(static_cast<std::uint16_t>(length)).bytes + std::string(frame);
    }
    writeFile(corpus + "/fuzz_undo/0", seed);
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
