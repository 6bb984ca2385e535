// The chunked binary file under every file of a database: chunk frames, two string encodings and one integer
// encoding. A failure is one line in the log and a result; what it means for the file is the caller's to
// decide.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/bytestream.h"
#include "platform/system/cobject.h"
#include "platform/system/text.h"
#include "platform/system/tree.h"

constexpr int tagBufferSize = 5;
constexpr int headercapacity = 100; // with which the counted string at the start of a file is read

// Unless a line says otherwise an operation returns 1 on success and 0 on failure.
class TSXbinfile : public CObject {
public:
    TSXbinfile() = default;
    ~TSXbinfile() override;

    // 1 opened; 0 could not be opened; -1 this object is open already, and stays open on its old file.
    int openread(Tree& tree, const char* path); // an existing file, whose path begins with that of the tree
    int openwrite(const char* path);            // a new file, or an existing one emptied
    int openmemory();                           // no file: takecontent takes what is written, and closes
    std::string takecontent();
    int close(); // 0 when not all that was written is in the file; GetLastError tells why
    FileState state() { return stream.state(); }
    const FileState& stateatopen() const { return stream.opened(); }

    // All count bytes or failure; 0 bytes is a failure. Bytes of a short read stay in the buffer.
    int blockread(void* bytes, int count);
    int blockwrite(const void* bytes, int count);

    int seek(std::int64_t position); // 0 on success, else not: the one operation whose 0 is success
    std::int32_t tell() const;       // -1 where the position is beyond what 32 bits hold
    int iseof() const;               // non-zero once a read has asked for more than there was
    // The error number of the first failure of the disk while reading, 0 if there was none: what is missing
    // then is not the file's fault.
    std::uint32_t readfailure() const { return stream.readFailure(); }

    // 1: a frame was read and the stream stands at the chunk's body; 0: end of file; -1: no frame stands
    // here.
    int readtag(char tag[tagBufferSize]);
    // Leaves the last chunk read by its end. 1; 0 when that end is negative and the stream stands where it
    // stood; -1 when that end does not lead on, so that the walk has to end.
    int skipchunk();

    int readint(std::int32_t& number); // not touched on failure
    // Text of at most capacity - 1 bytes, up to its first NUL; "???" on failure. A counted string, of which
    // what exceeds the capacity is left unread; and a field string, whose text stays until the next
    // operation.
    int readstring(std::string& text, int capacity);
    int readfield(std::string_view& text, int capacity);
    std::int32_t fieldcapacity() const { return lastcapacity; } // of the last one, as it stands in the file
    // Passes over counted strings. After the end of the file, or once the disk has failed, there is nothing
    // to pass over, however many there should be.
    void passstrings(std::int32_t count, int capacity);

    int writetag(const char* tag); // opens a chunk; always 1
    int endtag();                  // closes it; always 1
    int writeint(std::int32_t number);
    int writestring(const char* text);
    int writefield(std::string_view text, int capacity);
    static void makefield(std::string& bytes, std::string_view text, int capacity); // what writefield writes
    // The integer that stands there in bytes of a file; missing where they end before it does.
    static std::int32_t intin(std::string_view bytes, std::size_t at, std::int32_t missing);

private:
    int isopen() const;
    int opened(bool good, const char* path);
    int readbytes(void* bytes, std::size_t wanted);
    int readlength(std::int32_t& length, int capacity);
    bool takefield(std::string_view& text, int capacity);
    bool passahead(int capacity);
    int readtext(std::string& text, std::int32_t length);
    int endread(std::string& text, std::int32_t length, int lengthread, int textread);
    int writebytes(const std::string& bytes);

    std::int32_t openflag = 0;
    std::int32_t chunkend = 0;
    std::int32_t endposition = 0; // where the end field of the chunk that is being written stands
    Text<200> filename = "???";   // for messages only
    std::string piece;            // of readfield and writefield
    ByteStream stream;
    std::int64_t frameend = 0; // where the body of the last chunk read begins
    std::int32_t lastcapacity = 0;
    bool endknown = false; // whether that chunk's end could be read
};
