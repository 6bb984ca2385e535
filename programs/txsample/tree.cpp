#include "tree.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "files/binfile.h"
#include "files/settingsfile.h"
#include "model/fileclass.h"
#include "platform/system/errors.h"
#include "platform/system/person.h"

namespace filesystem = std::filesystem;

namespace {

constexpr std::uintmax_t textoffset = 8; // of a field's text in the field
constexpr const char* directories[] = {"DBASE",
                                       "fprint",
                                       "images",
                                       "char",
                                       "seq",
                                       "matrix",
                                       "gel2d",
                                       "Library",
                                       "Library/ENTERIC.LIB",
                                       "Library/SOIL.LIB",
                                       "bundles"};

const FileClass& classof(const DataFile& file) {
    return fileclasses[file.fileclass];
}

// A chunk that no reader knows. Its body holds what looks like the frame of a record chunk.
void writeunknown(TSXbinfile& file, const char* tag, int size) {
    file.writetag(tag);
    file.writeint(size);
    for (int i = 0; i < size; ++i)
        file.writestring(i % 2 == 0 ? "TGENT" : "TGeEN and more");
    file.endtag();
}

// The text as it stands; writefield would end it at a NUL byte.
void writekey(TSXbinfile& file, const SampleRecord& record) {
    if (record.key.find('\0') == std::string::npos) {
        file.writefield(record.key.c_str(), record.capacity);
        return;
    }
    std::string bytes = record.key;
    bytes.resize(static_cast<std::size_t>(record.capacity));
    file.writeint(static_cast<std::int32_t>(record.key.size()));
    file.writeint(record.capacity);
    file.blockwrite(bytes.data(), record.capacity);
}

bool hasrecordchunk(const DataFile& data) {
    return !data.records.empty() || data.statedcount >= 0;
}

std::string nameof(const DataFile& file) {
    const char* extension = file.extension == nullptr ? classof(file).extension : file.extension;
    return std::string(classof(file).directory) + "/" + file.name + "." + extension;
}

// Throws what could not be done with the path, for the last error.
[[noreturn]] void fail(const char* tried, const std::string& path) {
    throw std::runtime_error(std::string("can't ") + tried + " '" + path + "': " + errorText(GetLastError()));
}

void open(TSXbinfile& file, const std::string& path) {
    if (file.openwrite(path.c_str()) != 1)
        fail("make", path);
}

// What could not be written shows at the latest here, since a new file reaches the disk when it is closed.
void close(TSXbinfile& file, const std::string& path, bool brokentag) {
    if (brokentag)
        file.blockwrite("no chunk here", 13);
    if (file.close() != 1)
        fail("write", path);
}

} // namespace

void failon(const std::error_code& error, const char* tried, const std::string& path) {
    if (error)
        throw std::runtime_error(std::string("can't ") + tried + " '" + path + "': " + error.message());
}

SampleTree::SampleTree(std::string root, const SampleOptions& wanted)
    : options(wanted), content(wanted.seed, wanted.keys), root_(std::move(root)) {}

void SampleTree::makedirectories() {
    for (const char* directory : directories) {
        std::error_code error;
        filesystem::create_directory(pathof(directory), error);
        failon(error, "make", pathof(directory));
    }
}

int SampleTree::write(const DataFile& data) {
    const std::string path = pathof(nameof(data));
    TSXbinfile file;
    open(file, path);
    file.writestring(data.header == nullptr ? classof(data).header : data.header);
    writeunknown(file, "INF", 1);
    if (data.fileclass == 0)
        writefieldnames(file);
    if (classof(data).typetag[0] != '\0') {
        file.writetag(classof(data).typetag);
        file.writefield(data.type.c_str(), keycapacity);
        file.endtag();
    }
    writeunknown(file, "SET", 4);
    const int lastkey = hasrecordchunk(data) ? writerecords(file, data) : 0;
    writeunknown(file, "END", 0);
    close(file, path, data.brokentag);
    ++result.datafiles;
    return lastkey;
}

void SampleTree::writefieldnames(TSXbinfile& file) const {
    file.writetag("FLD");
    file.writeint(options.fields);
    for (int field = 0; field < options.fields; ++field)
        file.writestring(fieldname(field).c_str());
    file.endtag();
}

int SampleTree::writerecords(TSXbinfile& file, const DataFile& data) {
    const bool single = std::strcmp(classof(data).recordtag, "KEY") == 0;
    file.writetag(classof(data).recordtag);
    if (!single)
        file.writeint(data.statedcount >= 0 ? data.statedcount
                                            : static_cast<std::int32_t>(data.records.size()));
    int lastkey = 0;
    for (const SampleRecord& record : data.records) {
        lastkey = file.tell();
        writerecord(file, data, record);
    }
    if (single) // what no reader knows: the one chunk that is left by its end
        file.writestring("TGKEY and whatever else belongs to a gel");
    file.endtag();
    return lastkey;
}

void SampleTree::writerecord(TSXbinfile& file, const DataFile& data, const SampleRecord& record) {
    const int number = ++result.records;
    writekey(file, record);
    if (classof(data).recordtypes)
        file.writefield(record.type.c_str(), keycapacity);
    for (int i = 0; i < classof(data).recordintegers; ++i)
        file.writeint(content.integer(number + i));
    for (int field = 0; data.fileclass == 0 && field < options.fields; ++field)
        file.writestring(content.fieldvalue(number, field).c_str());
}

void SampleTree::write(const SideFile& side) {
    const std::string path = pathof(side.path);
    TSXbinfile file;
    open(file, path);
    if (filesystem::path(side.path).extension() == ".CMP")
        file.blockwrite(side.header.data(), static_cast<int>(side.header.size()));
    else
        file.writestring(side.header.c_str());
    for (int i = 0; i < side.chunks; ++i)
        writeunknown(file, i % 2 == 0 ? "CAL" : "BND", i);
    close(file, path, side.brokentag);
    ++result.sidefiles;
}

void SampleTree::writecut(const DataFile& data) {
    const int lastkey = write(data);
    const std::string path = resolvePath(pathof(nameof(data)));
    std::error_code error;
    filesystem::resize_file(path, static_cast<std::uintmax_t>(lastkey) + textoffset + 2, error);
    failon(error, "cut", path);
}

void SampleTree::writesettings() {
    std::error_code error;
    filesystem::create_directories(resolvePath(options.home), error);
    failon(error, "make", options.home);
    DatabaseSettings settings;
    if (!settings.homeDirectory.take(options.home))
        failon(std::make_error_code(std::errc::filename_too_long), "write settings in", options.home);
    settings.currentDatabase = options.name.c_str();
    settings.databaseDirectory = root_.c_str();
    if (!writeSettingsFile(settings))
        fail("write the settings of", options.name + "' in '" + options.home);
}

void SampleTree::rename(const std::string& from, const std::string& to) {
    std::error_code error;
    filesystem::rename(pathof(from), pathof(to), error);
    failon(error, "rename", pathof(from));
}

void SampleTree::remove(const std::string& directory) {
    std::error_code error;
    filesystem::remove(pathof(directory), error);
    failon(error, "remove", pathof(directory));
}
