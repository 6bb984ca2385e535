// One data file's key table in memory: the keys of its records, their types and where each stands on disk.
// Reading the file is the constructor's work and never fails; valid and ondisk tell what was found. Changed
// keys are written back in place, and nothing else of the file is touched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "model/change.h"
#include "platform/system/cobject.h"
#include "platform/system/filestate.h"
#include "platform/system/text.h"

class TSXbinfile;
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

// Why the last write failed, and what to do.
std::string unwritten();

class TSXdatafile : public CObject {
public:
    TSXdatafile(TSXdatabase& owner, TSXfilelist& holder, const char* basename, std::int32_t fileclass);

    // Gives record i another key of at most 60 bytes and marks it changed. Out of 1 to keycount nothing
    // happens.
    void setkey(int i, const char* text);
    void clearkey(int i); // the same with the empty key
    // Adds a record that is not on disk yet; with 1000 records nothing happens.
    void addentry(const char* text);
    int anydirty() const; // 1 if a record differs from the disk, else 0
    // Brings the disk up to date. What can't be written is reported and stays changed.
    void writeback();
    // The two halves of that; each answers with nothing, or with what to tell the person of what is left.
    // Looks at the disk and adds the changes that can be made there, in their order.
    std::string collectchanges(std::vector<Change>& group);
    // Makes changes that were collected, whatever else has happened meanwhile, and puts them on the disk.
    // Each that succeeds is noted by the database, and its record is no longer changed.
    std::string makechanges(Change* first, Change* last);
    bool isempty() const { return valid == 1 && keycount == 0; }
    // Whether record i could not be read, because the disk failed or its lengths lead nowhere. Such a record
    // keeps its place in the tables with "???"; it is neither changed nor written.
    bool isunread(int i) const;
    // Puts the whole file on the list of what is unread, with that error number.
    void noteunread(std::uint32_t number);
    int removefile(); // deletes the file: 0 on success, -1 on failure; the object stays as it was
    // Writes a file that is not on disk yet; only for classes that can be made anew. Nothing, or why it could
    // not be done. endmaking follows, behind a sync of the directory.
    virtual std::string writewhole();
    // Lets the made file count, or takes it away again where its name could not be put on the disk itself,
    // which the obstacle tells. Nothing, or what to tell the person.
    std::string endmaking(Change& change, const std::string& obstacle);

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

protected:
    enum class Opening : std::uint8_t { good, failed, wrongheader };
    // Opens the file and checks its header, and closes it again where that is wrong.
    Opening openwithheader(TSXbinfile& file);
    // Walks the chunks of an open file, closes it and sets the flags. A reader takes the body of each chunk.
    void readchunks(TSXbinfile& file);
    // What follows a chunk: the next tag stands behind what was taken; or the chunk is left by its end; or
    // nothing, the file is refused.
    enum class Chunk : std::uint8_t { taken, toleave, refused };
    // Takes what the class knows of the chunk.
    virtual Chunk readchunk(TSXbinfile& file, const char* tag) = 0;
    // Reads a record count and makes the table; false if it is not from 1 to 1000, and the table is empty.
    bool readcount(TSXbinfile& file);
    // A key or a type, which stays until the next operation on the file; "???" where it is not good.
    Reading readkeyfield(TSXbinfile& file, std::string_view& text);
    void maketable(std::int32_t count);
    // Puts the file on the list of what is unread where the disk has failed, else each record that could not
    // be read.
    void notereading(const TSXbinfile& file);
    void readkey(TSXbinfile& file, std::size_t i); // of record i, which stands here

private:
    void collectkeys(TSXbinfile& file, std::vector<Change>& group, std::string& obstacle) const;
    std::string opensame(TSXbinfile& file) const;
    std::string whynotmade() const;
    void settle(Change& change);
};
