// One data file's key table in memory: the keys of its records, their types and where each stands on disk.
// The files of all classes are read by it; they differ by their row in the table of file classes. Of an
// experiment file it takes the types and the records' keys, of a .DBS file the keys, and walks over
// everything else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "changes/carryout.h"
#include "model/fileclass.h"
#include "model/wholereading.h"
#include "platform/system/cobject.h"
#include "platform/system/filestate.h"
#include "platform/system/text.h"

class TSXdatabase;
class TSXfilelist;

constexpr int maxrecords = 1000;
constexpr int keycapacity = 61; // of a key field: 60 bytes of text and a terminator
constexpr int maxkeylength = keycapacity - 1;

// What became of reading a text.
enum class Reading : std::uint8_t {
    good,
    ended,     // the file ends in it
    senseless, // its length makes no sense
};

class TSXdatafile : public CObject {
public:
    // Reads the file of that base name in the directory of its class, which never fails: valid and ondisk
    // tell what was found. A .DBS file that can't be opened is a new one: valid, not on disk, without
    // records.
    TSXdatafile(TSXdatabase& owner, TSXfilelist& holder, const char* basename, std::int32_t fileclass);

    void read(); // the same once more, in place of what was found before
    // Gives record i another key of at most 60 bytes and marks it changed. Where it is not changeable nothing
    // happens but that the database notes it as left out.
    void setkey(int i, const char* text);
    void clearkey(int i) { setkey(i, ""); } // the same with the empty key
    // Adds a record that is not on disk yet; with 1000 records nothing happens.
    void addentry(const char* text);
    int anydirty() const;                    // 1 if a record differs from the disk, else 0
    std::vector<NewKey> changedkeys() const; // of a file on disk; the texts stay as long as the keys do
    // A record has that key on the disk now. It is no longer changed where that is its key.
    void settle(int i, std::string_view key);
    // The content of a .DBS file that is not on disk yet, with no fields; offsets gets the offset of each key
    // field.
    std::string wholecontent(std::vector<std::int32_t>& offsets) const;
    // That content is on the disk.
    void settlewhole(const FileState& state);
    bool isempty() const { return valid == 1 && keycount == 0; }
    // Whether record i could not be read, because the disk failed or its lengths lead nowhere. Such a record
    // keeps its place in the tables with "???"; it is neither changed nor written.
    bool isunread(int i) const;
    // Whether record i may get another key: it was read, a new key fills its field and no more, and the file
    // lies in the database.
    bool ischangeable(int i) const;
    std::string whyleft(int i) const; // of a record that was read: why it may not
    void noteunreadrecords();         // puts each record that could not be read on the list of what is unread
    // Puts the whole file there, with that error number.
    void noteunread(std::uint32_t number);

    TSXdatabase& database;
    TSXfilelist& list;
    Text<600> name; // base name: no directory, no extension
    Text<1000> path;
    std::int32_t classid;
    std::int32_t typeid_ = 0; // the file's own experiment type
    // The records, from 1 to keycount; slot 0 holds nothing. A record never leaves the table.
    std::int32_t keycount = 0;
    std::vector<std::string_view> keys;       // kept by the database, each with a terminator; may be empty
    std::vector<std::int32_t> keytypes;       // experiment type of each record
    std::vector<std::int32_t> keypos;         // offset of the key field; -1 for a record that is not on disk
    std::vector<std::int32_t> keydirty;       // 1 if the key differs from the disk
    std::vector<std::string_view> keysondisk; // of each changed record the key as it was read
    std::int32_t valid = 0;                   // 1 if the file is usable
    std::int32_t ondisk = 0;                  // 1 if the file can be updated in place
    std::vector<Reading> keyreading;          // of each record's key and type
    std::string unreadname;                   // under which its records stand on the list of what is unread
    bool unread = false;                      // the disk gave no answer somewhere: nothing of the file counts
    FileState onread;                         // the file on the disk when it was read or last written
    std::string entryname; // in its directory, as the search gave it; empty: it is made anew
    bool outside = false;  // a link out of the database leads to it: it is never changed

private:
    void forget(std::int32_t knowntypes); // what an earlier reading has found
    void maketable(std::int32_t count);
    Chunk readchunk(TSXbinfile& file, const char* tag);
    Chunk readrecords(TSXbinfile& file);
    void readrecord(TSXbinfile& file, std::size_t i); // which stands here
    // A key or a type, which stays until the next operation on the file; "???" where it is not good.
    static Reading readtext(TSXbinfile& file, std::string_view& text);
    std::int32_t readtype(TSXbinfile& file, Reading& reading);
    Failure whyclosed() const; // that keeps a file on disk from being written

    const FileClass& format;
    std::int32_t fieldcount = 0;         // of each entry in a .DBS file
    Reading typereading = Reading::good; // of the file's own type
    mutable std::optional<Failure> closed;
    std::vector<bool> oddfield; // of each record: its field has another capacity than new keys have
};
