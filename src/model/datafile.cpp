#include "model/datafile.h"

#include <algorithm>
#include <utility>

#include "files/binfile.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "platform/system/errors.h"
#include "reporting/log.h"

TSXdatafile::TSXdatafile(TSXdatabase& owner, TSXfilelist& holder, const char* basename,
                         std::int32_t fileclass)
    : database(owner), list(holder), name(basename), classid(fileclass) {
    const FileClass& format = fileclasses[classid];
    logLine(Text<700>().format("   found %s file '%s'", format.foundlabel, basename));
    path.format("%s/%s/%s.%s", database.directory.c_str(), format.directory, basename, format.extension);
}

void TSXdatafile::setkey(int i, const char* text) {
    if (i < 1 || i > keycount || isunread(i))
        return;
    const auto record = static_cast<std::size_t>(i);
    database.keyschanged();
    keysondisk.resize(keys.size());
    if (keydirty[record] != 1)
        keysondisk[record] = keys[record];
    keys[record] = database.keytexts.keep(text);
    keydirty[record] = 1;
}

void TSXdatafile::clearkey(int i) {
    setkey(i, "");
}

void TSXdatafile::addentry(const char* text) {
    if (keycount >= maxrecords || unread)
        return;
    ++keycount;
    const auto size = static_cast<std::size_t>(keycount) + 1;
    keys.resize(size);
    keytypes.resize(size, typeid_);
    keypos.resize(size, -1);
    keydirty.resize(size);
    keyreading.resize(size);
    setkey(keycount, text);
}

bool TSXdatafile::isunread(int i) const {
    return unread || (i >= 1 && i <= keycount && keyreading[static_cast<std::size_t>(i)] != Reading::good);
}

int TSXdatafile::anydirty() const {
    return std::find(keydirty.begin(), keydirty.end(), 1) != keydirty.end() ? 1 : 0;
}

int TSXdatafile::removefile() {
    return database.takeaway(path) ? 0 : -1;
}

TSXdatafile::Opening TSXdatafile::openwithheader(TSXbinfile& file) {
    if (file.openread(path) != 1) {
        if (!isAbsence(GetLastError())) // a file that has gone, or is only to be made, lacks nothing
            noteunread(GetLastError());
        return Opening::failed;
    }
    onread = file.state();
    std::string header;
    file.readstring(header, headercapacity);
    if (header == fileclasses[classid].header)
        return Opening::good;
    if (const char* line = fileclasses[classid].headerline; *line != '\0')
        logLine(line);
    notereading(file);
    file.close();
    return Opening::wrongheader;
}

void TSXdatafile::noteunread(std::uint32_t number) {
    unread = true;
    database.addunreadpath(path.view(), errorText(number), Unread::whole);
}

void TSXdatafile::notereading(const TSXbinfile& file) {
    if (file.readfailure() != 0) {
        noteunread(file.readfailure());
        return;
    }
    for (std::size_t i = 1; i < keyreading.size(); ++i) {
        if (keyreading[i] == Reading::good)
            continue;
        const char* why = keyreading[i] == Reading::ended ? "the file ends in its key or type."
                                                          : "the length of its key or type makes no sense.";
        unreadname = database.diskname(path.view());
        database.addunreadpath(path.view(), Text<100>().format("Record %zu: %s", i, why).c_str(),
                               Unread::part, static_cast<std::int32_t>(i));
    }
}

void TSXdatafile::readchunks(TSXbinfile& file) {
    char tag[tagBufferSize];
    int result = 1;
    do {
        result = file.readtag(tag);
        if (result != 1)
            break;
        const Chunk chunk = readchunk(file, tag);
        if (chunk == Chunk::refused) {
            notereading(file);
            file.close();
            return;
        }
        if (chunk == Chunk::toleave)
            result = file.skipchunk();
    } while (result != -1 && file.iseof() == 0);
    notereading(file);
    file.close();
    ondisk = 1;
    valid = result == -1 ? 0 : 1;
}

bool TSXdatafile::readcount(TSXbinfile& file) {
    std::int32_t count = 0;
    file.readint(count);
    const bool usable = count >= 1 && count <= maxrecords;
    maketable(usable ? count : 0);
    return usable;
}

Reading TSXdatafile::readkeyfield(TSXbinfile& file, std::string_view& text) {
    if (file.readfield(text, keycapacity) == 1)
        return Reading::good;
    return file.iseof() != 0 ? Reading::ended : Reading::senseless;
}

void TSXdatafile::maketable(std::int32_t count) {
    const auto size = static_cast<std::size_t>(count) + 1;
    database.keyschanged();
    keycount = count;
    keys.assign(size, {});
    keytypes.assign(size, 0);
    keypos.assign(size, 0);
    keydirty.assign(size, 0);
    keyreading.assign(size, Reading::good);
    keysondisk.clear();
}

void TSXdatafile::readkey(TSXbinfile& file, std::size_t i) {
    std::string_view key;
    keypos[i] = file.tell();
    keyreading[i] = readkeyfield(file, key);
    keys[i] = database.keytexts.keep(key);
}
