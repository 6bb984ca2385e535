// A change of the disk: these bytes of a file become those, a file goes, or one comes. It is the same in
// memory and in an undo file, for a save, a repair that acts at once, what finishes it after an interruption,
// and what takes it back.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "changes/bytes.h"
#include "changes/content.h"
#include "platform/system/filestate.h"

struct KeyField {
    std::int32_t record = 0; // from 1
    std::int64_t offset = 0;
    StoredBytes before; // fewer bytes where the file ends in the field
    StoredBytes after;
    bool isChange() const { return before.length != after.length || before.stored != after.stored; }
};

struct Change {
    enum Kind : std::uint8_t { keys = 1, deletion = 2, making = 3 };

    Kind kind = keys;
    std::string file; // below the database's directory, as it is spelled on the disk
    FileState state;  // before the change; of a making, what is made
    bool given =
        false; // a restore: owner, rights and times of the state are given back; of keys the times alone
    Moment read, changed;              // keys: those times
    std::uint32_t fieldcount = 0;      // keys
    std::string fields;                // keys: one after the other, as an undo file has them
    std::int64_t sizeafter = 0;        // keys: of the file
    std::uint32_t checksum = 0;        // keys: of the whole content before
    std::string othername;             // deletion, making: another name of the same file, or empty
    std::vector<Attribute> attributes; // deletion, making
    FileContent content;               // deletion, making: of a link, where it leads to

    // Of this run alone:
    FileState judged;            // the file that was looked at: only that is changed
    std::vector<Standing> parts; // what stood there then, of each field, or of the whole
    bool begun = false;          // bytes were written
    bool made = false;           // it stands on the disk
};

// Of what stands there, or of nothing, as it was looked at.
Change deletionof(std::string file, const FileState& judged);
Change makingof(std::string file, FileState::Kind kind, FileContent content = {});

void addfield(Change& change, std::int32_t record, std::int64_t offset, std::string_view before,
              std::string_view after);
KeyField readfield(Decoder& from);
// Calls visit with each field of a change of keys, in order.
template <class Visit> void foreachfield(const Change& change, Visit visit) {
    Decoder from(change.fields);
    for (std::uint32_t i = 0; i < change.fieldcount && from.good; ++i)
        visit(readfield(from));
}

std::string parentof(const std::string& name); // its directory, "" for one in the database's own
std::string keyin(std::string_view field);     // the text that the bytes of a key field hold

// A line of what was changed: one key, or a file or directory that went or came.
struct ChangeLine {
    Change::Kind kind = Change::keys;
    std::string file;
    std::int32_t record = 0; // of a key
    std::int64_t offset = 0;
    std::string oldkey, newkey;
};
std::string describe(const ChangeLine& line); // for the log

// Goes through the lines of several changes; a key that is what it was has none.
class ChangeLines {
public:
    explicit ChangeLines(std::span<const Change> changes) : rest_(changes), fields_("") {}
    bool next(ChangeLine& line);

private:
    std::span<const Change> rest_;
    Decoder fields_; // of the first of the rest
    bool inside_ = false;
};
std::size_t countlines(std::span<const Change> changes);
// Many changes in words: "5 keys changed, 2 files deleted, 1 made".
std::string summaryof(std::uint32_t keys, std::uint32_t deletions, std::uint32_t makings);
