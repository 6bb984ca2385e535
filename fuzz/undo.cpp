// A fuzz target: restores a small database by an undo file whose items are the input, under a sound header,
// and ends the process where anything outside of the database has changed.
#include <cstdio>

#include "tempdir.h"
#include "undo/journal.h"
#include "undo/restore.h"
#include "undo/undofile.h"

namespace {

namespace fs = std::filesystem;

struct Place : TempDir {
    std::string database = *this / "database";
    std::string undoFile = *this / "txinspect/a.undo";

    Place() {
        fs::create_directory(*this / "txinspect");
        setenv("XDG_STATE_HOME", path().c_str(), 1);
    }

    void fill(std::string_view input) const {
        fs::remove_all(database);
        fs::create_directories(database + "/DBASE");
        writeFile(database + "/DBASE/A.DBS", std::string(200, 'a'));
        writeFile(database + "/DBASE/B.DBS", std::string(100, 'b'));
        const bool open = !input.empty() && (input[0] & 1) != 0;
        EntryState state;
        readEntry(database, OfLink::target, state);
        Encoder start;
        start.text(database).text("fuzz");
        const std::string body =
            start.bytes + std::string(input.substr(std::min<std::size_t>(input.size(), 1)));
        UndoHeader header;
        header.length = UndoHeader::size + body.size();
        header.finished = open ? UndoHeader::size : header.length;
        header.device = state.device;
        header.inode = state.inode;
        header.checksum = checksumOf(body);
        writeFile(undoFile, header.encode() + body);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    static const Place place;
    place.fill({data, size});
    finishInterrupted(place.database);
    restore({place.undoFile, place.database, true, false, ""});
    if (listTree(place.path() + "/txinspect") != std::vector<std::string>{"a.undo"}) {
        std::fprintf(stderr, "broken: a restore stays inside of its database\n");
        std::abort();
    }
    return 0;
}
