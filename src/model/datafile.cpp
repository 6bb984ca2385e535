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
    if (!ischangeable(i)) {
        if (i >= 1 && i <= keycount && !isunread(i))
            database.leftout.push_back(whyleft(i));
        return;
    }
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
    oddfield.resize(size);
    setkey(keycount, text);
}

bool TSXdatafile::isunread(int i) const {
    return unread || (i >= 1 && i <= keycount && keyreading[static_cast<std::size_t>(i)] != Reading::good);
}

bool TSXdatafile::ischangeable(int i) const {
    return i >= 1 && i <= keycount && !isunread(i) && !outside && !oddfield[static_cast<std::size_t>(i)] &&
           !whyclosed();
}

// Asked once, when something of the file is to be changed.
Failure TSXdatafile::whyclosed() const {
    if (ondisk == 1 && !asked) {
        File file;
        closed = database.tree->openToWrite(database.tree->below(path.view()), file);
    }
    asked = true;
    return closed;
}

std::string TSXdatafile::whyleft(int i) const {
    const std::string file = database.diskname(path.view());
    if (outside)
        return file + ": a link leads to it out of the database, and nothing is changed there";
    if (const Failure failure = whyclosed())
        return file + ": it can't be written (" + failure.text() + ")";
    return file + ", record " + std::to_string(i) +
           ": its key field has another capacity than a new key has, which would not fill it, or reach "
           "beyond it";
}

int TSXdatafile::anydirty() const {
    return std::find(keydirty.begin(), keydirty.end(), 1) != keydirty.end() ? 1 : 0;
}

std::vector<NewKey> TSXdatafile::changedkeys() const {
    std::vector<NewKey> changed;
    for (std::size_t i = 1; i < keys.size(); ++i)
        if (keydirty[i] == 1)
            changed.push_back({static_cast<std::int32_t>(i), keypos[i], keysondisk[i], keys[i]});
    return changed;
}

void TSXdatafile::settle(int i, std::string_view key) {
    const auto record = static_cast<std::size_t>(i);
    if (i < 1 || i > keycount || keydirty[record] != 1)
        return;
    keydirty[record] = keys[record] == key ? 0 : 1;
    keysondisk[record] = keydirty[record] == 1 ? database.keytexts.keep(key) : std::string_view();
}

std::string TSXdatafile::wholecontent(std::vector<std::int32_t>& places) const {
    TSXbinfile file;
    file.openmemory();
    file.writestring(fileclasses[classid].header);
    file.writetag("FLD");
    file.writeint(0);
    file.endtag();
    file.writetag(fileclasses[classid].recordtag);
    file.writeint(keycount);
    places.resize(keys.size());
    for (std::size_t i = 1; i < keys.size(); ++i) {
        places[i] = file.tell();
        file.writefield(keys[i], keycapacity);
    }
    file.endtag();
    return file.takecontent();
}

void TSXdatafile::settlewhole(std::vector<std::int32_t> places, const FileState& state) {
    keypos = std::move(places);
    keydirty.assign(keys.size(), 0);
    keysondisk.clear();
    onread = state;
    ondisk = 1;
}

TSXdatafile::Opening TSXdatafile::readfile() {
    std::uint32_t failure = ERROR_SUCCESS;
    bool changed = false;
    Opening opening = readonce(failure, changed);
    if (changed)
        opening = readonce(failure, changed);
    notereading(changed ? ERROR_FILE_INVALID : failure);
    return opening;
}

TSXdatafile::Opening TSXdatafile::readonce(std::uint32_t& failure, bool& changed) {
    forget();
    TSXbinfile file;
    const Opening opening = openwithheader(file);
    failure = ERROR_SUCCESS;
    changed = false;
    if (opening == Opening::failed) {
        // What a search has found lacks something where it is not there; what is only to be made does not.
        failure = list.scanning || !isAbsence(GetLastError()) ? GetLastError() : ERROR_SUCCESS;
        return opening;
    }
    if (opening == Opening::good)
        readchunks(file);
    const FileState now = file.state();
    failure = file.readfailure();
    changed = now != FileState() && !now.isUnchanged(onread);
    file.close();
    return opening;
}

TSXdatafile::Opening TSXdatafile::openwithheader(TSXbinfile& file) {
    if (file.openread(*database.tree, path) != 1)
        return Opening::failed;
    onread = file.stateatopen();
    std::string header;
    file.readstring(header, headercapacity);
    if (header == fileclasses[classid].header)
        return Opening::good;
    if (const char* line = fileclasses[classid].headerline; *line != '\0')
        logLine(line);
    return Opening::wrongheader;
}

void TSXdatafile::noteunread(std::uint32_t number) {
    unread = true;
    database.addunreadpath(path.view(), errorText(number), Unread::whole);
}

// The whole file where the disk has failed, else each record that could not be read.
void TSXdatafile::notereading(std::uint32_t failure) {
    if (failure != 0) {
        noteunread(failure);
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
        if (chunk == Chunk::refused)
            return;
        if (chunk == Chunk::toleave)
            result = file.skipchunk();
    } while (result != -1 && file.iseof() == 0);
    ondisk = 1;
    valid = result == -1 ? 0 : 1;
}

void TSXdatafile::forget() {
    maketable(0);
    valid = 0;
    ondisk = 0;
    typeid_ = 0;
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
    oddfield.assign(size, false);
    keysondisk.clear();
}

void TSXdatafile::readkey(TSXbinfile& file, std::size_t i) {
    std::string_view key;
    keypos[i] = file.tell();
    keyreading[i] = readkeyfield(file, key);
    oddfield[i] = file.fieldcapacity() != keycapacity;
    keys[i] = database.keytexts.keep(key);
}
