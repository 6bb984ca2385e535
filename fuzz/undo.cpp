// A fuzz target: restores a small database by an undo file whose frames are the input, each with a sound
// checksum, and ends the process where anything outside of the database has changed. A frame is its kind, two
// bytes of length, low byte first, and its bytes.
#include <cstdio>

#include "changes/frames.h"
#include "changes/restore.h"
#include "reporting/report.h"
#include "tempdir.h"

namespace {

namespace fs = std::filesystem;

struct Place : TempDir {
    std::string database = *this / "database";
    std::string undoFile = *this / "a.undo";

    void fill(std::string_view input) const {
        fs::remove_all(database);
        fs::create_directories(database + "/DBASE");
        writeFile(database + "/DBASE/A.DBS", std::string(200, 'a'));
        writeFile(database + "/DBASE/B.DBS", std::string(100, 'b'));
        fs::remove(undoFile);
        Tree tree;
        NewFile made;
        auto position = static_cast<std::int64_t>(UndoHeader::size);
        if (tree.open(path()) || tree.make("a.undo", made, Rights::ownerOnly) ||
            writehead(made.file, position, database))
            std::abort();
        FrameWriter frames(made.file, position);
        Decoder from(input);
        while (from.good && !from.rest.empty()) {
            const auto kind = from.number<std::uint8_t>();
            const std::string_view bytes = from.take(from.number<std::uint16_t>());
            if (from.good && frames.add(static_cast<FrameKind>(kind), bytes))
                std::abort();
        }
        UndoHeader header;
        if (frames.flush(position))
            std::abort();
        header.length = header.finished = static_cast<std::uint64_t>(position);
        if (made.file.write(0, header.encode()) || made.keep())
            std::abort();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    static const Place place;
    setReport([](const char*, const char*, std::uint32_t) { return 0; });
    place.fill({data, size});
    const auto tree = std::make_shared<Tree>();
    if (!tree->open(place.database))
        restore(tree, {.undofile = place.undoFile, .yes = true, .commit = {.keepundo = false}});
    std::vector<std::string> names = listTree(place.path());
    std::erase_if(names, [](const std::string& name) { return name.starts_with("database/"); });
    if (names != std::vector<std::string>{"a.undo"}) {
        std::fprintf(stderr, "broken: a restore stays inside of its database\n");
        std::abort();
    }
    return 0;
}
