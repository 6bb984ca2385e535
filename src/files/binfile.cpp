#include "files/binfile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "platform/system/errors.h"
#include "reporting/log.h"

namespace {

constexpr const char* unreadable = "???";

using Integer = std::array<unsigned char, 4>;

Integer encode(std::int32_t number) {
    const auto bits = static_cast<std::uint32_t>(number);
    Integer bytes;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
    return bytes;
}

std::int32_t decode(const Integer& bytes) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bits |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return static_cast<std::int32_t>(bits);
}

void append(std::string& bytes, std::int32_t number) {
    const Integer encoded = encode(number);
    bytes.append(encoded.begin(), encoded.end());
}

void logWithName(const char* what, const Text<200>& filename) {
    logLocalError(Text<400>().format("TSXbinfile: %s%s", what, filename.c_str()));
}

} // namespace

TSXbinfile::~TSXbinfile() {
    if (openflag == 1) {
        logLocalError("TSXbinfile: file not closed");
        stream.close();
    }
}

int TSXbinfile::isopen() const {
    if (openflag == 1)
        logLocalError("TSXbinfile: tried to open opened file");
    return openflag;
}

int TSXbinfile::opened(bool good, const char* path) {
    if (!good) {
        const std::uint32_t reason = GetLastError();
        logLocalError(Text<1200>().format("TSXbinfile: Could not open file %s", path));
        SetLastError(reason);
        return 0;
    }
    openflag = 1;
    filename = path;
    return 1;
}

int TSXbinfile::openread(Tree& tree, const char* path) {
    return isopen() == 1 ? -1 : opened(stream.open(tree, tree.below(path), OpenMode::read), path);
}

int TSXbinfile::openwrite(const char* path) {
    return isopen() == 1 ? -1 : opened(stream.open(path, OpenMode::write), path);
}

int TSXbinfile::openmemory() {
    openflag = stream.openMemory() ? 1 : 0;
    return openflag;
}

std::string TSXbinfile::takecontent() {
    openflag = 0;
    return stream.takeMemory();
}

int TSXbinfile::close() {
    if (openflag == 0) {
        logLocalError("TSXbinfile: tried to close closed file");
        return 0;
    }
    openflag = 0;
    if (stream.close())
        return 1;
    const std::uint32_t reason = GetLastError();
    logWithName("could not write all of ", filename);
    SetLastError(reason);
    return 0;
}

int TSXbinfile::blockread(void* bytes, int count) {
    if (openflag == 0) {
        logWithName("tried to blockread from closed file ", filename);
        return 0;
    }
    if (count <= 0)
        return 0;
    return readbytes(bytes, static_cast<std::size_t>(count));
}

int TSXbinfile::readbytes(void* bytes, std::size_t wanted) {
    return stream.read(bytes, wanted) == wanted ? 1 : 0;
}

int TSXbinfile::blockwrite(const void* bytes, int count) {
    if (openflag == 0) {
        logWithName("tried to blockwrite to closed file ", filename);
        return 0;
    }
    if (count <= 0)
        return 0;
    const auto wanted = static_cast<std::size_t>(count);
    return stream.write(bytes, wanted) == wanted ? 1 : 0;
}

std::int32_t TSXbinfile::intin(std::string_view bytes, std::size_t at, std::int32_t missing) {
    Integer found;
    if (at + found.size() > bytes.size())
        return missing;
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), found.size(), found.begin());
    return decode(found);
}

int TSXbinfile::seek(std::int64_t position) {
    return stream.seek(position) ? 0 : -1;
}

std::int32_t TSXbinfile::tell() const {
    const std::int64_t position = stream.tell();
    return position <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(position) : -1;
}

int TSXbinfile::iseof() const {
    return stream.atEnd() ? 1 : 0;
}

int TSXbinfile::readtag(char tag[tagBufferSize]) {
    std::memset(tag, 0, tagBufferSize);
    char scratch[6] = {};
    const int result = blockread(scratch, 5);
    if (iseof() != 0)
        return 0;
    if (result != 1 || scratch[0] != 'T' || scratch[1] != 'G') {
        logLocalError(Text<400>().format("TSXbinfile: could not read tag from %s (--%s--) %d",
                                         filename.c_str(), scratch, result));
        return -1;
    }
    std::memcpy(tag, scratch + 2, 3);
    Integer end = {};
    endknown = blockread(end.data(), static_cast<int>(end.size())) == 1;
    chunkend = decode(end);
    frameend = stream.tell();
    return 1;
}

int TSXbinfile::skipchunk() {
    if (!endknown || (chunkend >= 0 && chunkend < frameend)) {
        logLocalError(Text<400>().format("TSXbinfile: chunk end does not lead on in %s (%d)",
                                         filename.c_str(), chunkend));
        return -1;
    }
    return stream.seek(chunkend) ? 1 : 0;
}

int TSXbinfile::readint(std::int32_t& number) {
    Integer bytes;
    if (blockread(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        logWithName("could not read int from ", filename);
        return 0;
    }
    number = decode(bytes);
    return 1;
}

// Reads the length of a string and cuts it to what the caller's buffer holds.
int TSXbinfile::readlength(std::int32_t& length, int capacity) {
    Integer bytes;
    if (blockread(bytes.data(), static_cast<int>(bytes.size())) != 1)
        return 0;
    length = decode(bytes);
    if (length > capacity - 1) {
        logLocalError(
            Text<120>().format("TSXbinfile: length of string exceeded capacity (%d>=%d)", length, capacity));
        length = capacity - 1;
    }
    return 1;
}

int TSXbinfile::readtext(std::string& text, std::int32_t length) {
    if (length <= 0) {
        text.clear();
        return length == 0 ? 1 : 0;
    }
    text.resize(static_cast<std::size_t>(length));
    const int result = readbytes(text.data(), text.size());
    text.resize(std::min(text.size(), text.find('\0')));
    return result;
}

int TSXbinfile::endread(std::string& text, std::int32_t length, int lengthread, int textread) {
    if (lengthread == 1 && textread == 1)
        return 1;
    logLocalError(Text<400>().format("TSXbinfile: could not read string from %s (%d %d %d)", filename.c_str(),
                                     lengthread, textread, length));
    text = unreadable;
    return 0;
}

int TSXbinfile::readstring(std::string& text, int capacity) {
    std::int32_t length = 0;
    const int lengthread = readlength(length, capacity);
    const int textread = lengthread == 1 ? readtext(text, length) : 0;
    return endread(text, length, lengthread, textread);
}

void TSXbinfile::passstrings(std::int32_t count, int capacity) {
    for (; count > 0 && iseof() == 0 && readfailure() == 0; --count)
        if (!passahead(capacity))
            readstring(piece, capacity);
}

// A string that lies whole in memory and keeps to its capacity. False, and nothing is done, for any other.
bool TSXbinfile::passahead(int capacity) {
    const std::string_view ahead = stream.ahead();
    const std::int32_t length = intin(ahead, 0, -1);
    const std::size_t size = sizeof length + static_cast<std::size_t>(length);
    if (length < 0 || length >= capacity || size > ahead.size())
        return false;
    stream.pass(size);
    return true;
}

// The same of a field.
bool TSXbinfile::takefield(std::string_view& text, int capacity) {
    constexpr std::size_t head = 8; // its length and its width
    const std::string_view ahead = stream.ahead();
    const std::int32_t length = intin(ahead, 0, -1);
    const std::size_t size = head + static_cast<std::size_t>(std::max(length, intin(ahead, 4, 0)));
    if (length < 0 || length >= capacity || size > ahead.size())
        return false;
    text = ahead.substr(head, static_cast<std::size_t>(length));
    text = text.substr(0, text.find('\0'));
    lastcapacity = intin(ahead, 4, 0);
    stream.pass(size);
    return true;
}

int TSXbinfile::readfield(std::string_view& text, int capacity) {
    if (takefield(text, capacity))
        return 1;
    std::int32_t length = 0;
    const int lengthread = readlength(length, capacity);
    Integer bytes = {};
    const bool told = blockread(bytes.data(), static_cast<int>(bytes.size())) == 1;
    const std::int32_t width = decode(bytes);
    lastcapacity = told ? width : capacity;
    const int textread = lengthread == 1 ? readtext(piece, length) : 0;
    const std::int32_t used = std::max(length, 0);
    if (width > used && iseof() == 0)
        stream.skip(width - used);
    const int result = endread(piece, length, lengthread, textread);
    text = piece;
    return result;
}

int TSXbinfile::writetag(const char* tag) {
    blockwrite("TG", 2);
    blockwrite(tag, 3);
    endposition = tell();
    chunkend = -1;
    blockwrite(encode(chunkend).data(), 4);
    return 1;
}

int TSXbinfile::endtag() {
    chunkend = tell();
    seek(endposition);
    blockwrite(encode(chunkend).data(), 4);
    seek(chunkend);
    return 1;
}

int TSXbinfile::writeint(std::int32_t number) {
    if (blockwrite(encode(number).data(), 4) == 1)
        return 1;
    logWithName("could not write int to ", filename);
    return 0;
}

int TSXbinfile::writestring(const char* text) {
    const auto length = static_cast<std::int32_t>(std::strlen(text));
    std::string bytes;
    append(bytes, length);
    if (length == 0) {
        blockwrite(bytes.data(), 4);
        return 1;
    }
    bytes += text;
    return writebytes(bytes);
}

// The whole field goes out in one write, so that a failure leaves it old or new.
int TSXbinfile::writefield(std::string_view text, int capacity) {
    makefield(piece, text, capacity);
    return writebytes(piece);
}

void TSXbinfile::makefield(std::string& bytes, std::string_view text, int capacity) {
    const auto length = static_cast<std::int32_t>(text.size());
    bytes.clear();
    append(bytes, length);
    append(bytes, capacity);
    bytes += text;
    if (capacity > length)
        bytes.append(static_cast<std::size_t>(capacity - length), '\0');
}

int TSXbinfile::writebytes(const std::string& bytes) {
    if (blockwrite(bytes.data(), static_cast<int>(bytes.size())) == 1)
        return 1;
    const std::uint32_t reason = GetLastError();
    logWithName("could not write string to ", filename);
    SetLastError(reason);
    return 0;
}
