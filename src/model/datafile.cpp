#include "model/datafile.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/binfile.h"
#include "model/database.h"
#include "model/filelist.h"
#include "platform/system/errors.h"
#include "reporting/log.h"

namespace {

constexpr int valuecapacity = 300; // of field names and field values, which are read only to be passed over

} // namespace

TSXdatafile::TSXdatafile(TSXdatabase& owner, TSXfilelist& holder, const char* basename,
                         std::int32_t fileclass)
    : database(owner), list(holder), name(basename), classid(fileclass), format(fileclasses[fileclass]) {
    logLine(Text<700>().format("   found %s file '%s'", format.label, basename));
    path.format("%s/%s/%s.%s", database.directory.c_str(), format.directory, basename, format.extension);
    read();
}

void TSXdatafile::setkey(int i, const char* text) {
    if (!ischangeable(i)) {
        if (i >= 1 && i <= keycount && !isunread(i))
            database.leftout.push_back(whyleft(i));
        return;
    }
    const auto record = static_cast<std::size_t>(i);
    if (database.keychanging)
        database.keychanging(*this, i, text);
    database.keyschanged();
    keysondisk.resize(keys.size());
    if (keydirty[record] != 1)
        keysondisk[record] = keys[record];
    keys[record] = database.keytexts.keep(text);
    keydirty[record] = 1;
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
    if (!closed) {
        File file;
        closed =
            ondisk == 1 ? database.tree->openToWrite(database.tree->below(path.view()), file) : Failure();
    }
    return *closed;
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

std::string TSXdatafile::wholecontent(std::vector<std::int32_t>& offsets) const {
    TSXbinfile file;
    file.openmemory();
    file.writestring(format.header);
    file.writetag("FLD");
    file.writeint(0);
    file.endtag();
    file.writetag(format.recordtag);
    file.writeint(keycount);
    offsets.resize(keys.size());
    for (std::size_t i = 1; i < keys.size(); ++i) {
        offsets[i] = file.tell();
        file.writefield(keys[i], keycapacity);
    }
    file.endtag();
    return file.takecontent();
}

void TSXdatafile::settlewhole(const FileState& state) {
    wholecontent(keypos);
    keydirty.assign(keys.size(), 0);
    keysondisk.clear();
    onread = state;
    ondisk = 1;
}

void TSXdatafile::read() {
    unread = false;
    closed.reset();
    const WholeReading reading = readwhole(
        {*database.tree, path, format.header},
        [this](TSXbinfile& file, const char* tag) { return readchunk(file, tag); },
        [this, known = database.lasttype] { forget(known); });
    onread = reading.file;
    if (reading.outcome == WholeReading::wrongheader && *format.wrongheaderline != '\0')
        logLine(format.wrongheaderline);
    ondisk = reading.outcome == WholeReading::complete || reading.outcome == WholeReading::wrongtag ? 1 : 0;
    const bool isnew = reading.outcome == WholeReading::unopened && classid == 0;
    valid = reading.outcome == WholeReading::complete || isnew ? 1 : 0;
    // What a search has found lacks something where it is not there; what is only to be made does not.
    if (reading.outcome == WholeReading::unopened && !list.scanning && isAbsence(reading.failure))
        return;
    if (reading.failure != 0)
        noteunread(reading.failure);
    else
        noteunreadrecords();
}

void TSXdatafile::noteunread(std::uint32_t number) {
    unread = true;
    database.addunreadpath(path.view(), errorText(number), Unread::whole);
}

void TSXdatafile::noteunreadrecords() {
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

void TSXdatafile::forget(std::int32_t knowntypes) {
    database.forgettypes(knowntypes); // which only that reading has named
    maketable(0);
    typeid_ = 0;
    fieldcount = 0;
    typereading = Reading::good;
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

Chunk TSXdatafile::readchunk(TSXbinfile& file, const char* tag) {
    if (std::strcmp(tag, format.recordtag) == 0)
        return readrecords(file);
    if (*format.typetag != '\0' && std::strcmp(tag, format.typetag) == 0) {
        typeid_ = readtype(file, typereading);
        return Chunk::taken;
    }
    if (classid != 0 || std::strcmp(tag, "FLD") != 0)
        return Chunk::toleave;
    fieldcount = 0;
    file.readint(fieldcount);
    file.passstrings(fieldcount, valuecapacity);
    return Chunk::taken;
}

// The chunk of the one class without a count is left by its end, since there is more after the record.
Chunk TSXdatafile::readrecords(TSXbinfile& file) {
    std::int32_t count = format.counted ? 0 : 1;
    if (format.counted)
        file.readint(count);
    const bool usable = count >= 1 && count <= maxrecords;
    maketable(usable ? count : 0);
    for (std::size_t i = 1; i < keys.size(); ++i)
        readrecord(file, i);
    if (format.counted)
        return usable ? Chunk::taken : Chunk::unusable;
    typeid_ = keytypes[1];
    return Chunk::toleave;
}

void TSXdatafile::readrecord(TSXbinfile& file, std::size_t i) {
    std::string_view key;
    keypos[i] = file.tell();
    keyreading[i] = readtext(file, key);
    oddfield[i] = file.fieldcapacity() != keycapacity;
    keys[i] = database.keytexts.keep(key);
    Reading typeread = typereading;
    keytypes[i] = format.recordtypes ? readtype(file, typeread) : typeid_;
    if (keyreading[i] == Reading::good)
        keyreading[i] = typeread;
    file.passstrings(fieldcount, valuecapacity);
    for (int n = 0; n < format.recordintegers; ++n) {
        std::int32_t discarded;
        file.readint(discarded);
    }
    if (logEnabled != 1)
        return;
    const std::string type = classid == 0 ? "" : " | " + std::to_string(keytypes[i]);
    logLine(Text<100>().format("%s%s%s", format.recordindent, keys[i].data(), type.c_str()));
}

Reading TSXdatafile::readtext(TSXbinfile& file, std::string_view& text) {
    if (file.readfield(text, keycapacity) == 1)
        return Reading::good;
    return file.iseof() != 0 ? Reading::ended : Reading::senseless;
}

std::int32_t TSXdatafile::readtype(TSXbinfile& file, Reading& reading) {
    std::string_view text;
    reading = readtext(file, text);
    return database.addexptype(classid, text);
}
