#include "sample.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "damage.h"
#include "files/settingsfile.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "model/filelist.h"
#include "platform/system/person.h"
#include "platform/system/text.h"
#include "tree.h"

namespace filesystem = std::filesystem;

const std::vector<SampleNumber> samplenumbers = {
    {"files", ".DBS files", &SampleOptions::files, 0, maxfiles},
    {"entries", "Entries in each of them", &SampleOptions::entries, 1, maxrecords},
    {"types", "Experiment types in each class", &SampleOptions::types, 1, maxtypes / (fileclasscount - 1)},
    {"experiments", "Files of each experiment class", &SampleOptions::experiments, 0, maxfiles},
    {"records", "Records in each experiment file", &SampleOptions::records, 1, maxrecords},
    {"fields", "Fields of an entry", &SampleOptions::fields, 0, 100},
};

namespace {

constexpr int damageroom = 20; // files of a class that damages, and the repair of orphans, may add

// The experiment files of one class. No two records of a type have the same place, and places are below the
// number of entries, so that each names an entry of its own.
class ClassLayout {
public:
    ClassLayout(const SampleOptions& options, int fileclass) : mixed_(fileclass == 1), types_(options.types) {
        const std::int64_t entries = std::int64_t{options.files} * options.entries;
        files_ = std::min<std::int64_t>(options.experiments, types_ * entries);
        if (files_ == 0)
            return;
        const std::int64_t filesoftype = (files_ + types_ - 1) / types_;
        const std::int64_t possible = mixed_ ? types_ * entries / files_ : entries / filesoftype;
        records_ = std::min<std::int64_t>(fileclass == 5 ? 1 : options.records, possible);
    }

    int files() const { return static_cast<int>(files_); }
    int records() const { return static_cast<int>(records_); }
    // Gel files mix the types of their records; any other file has one type.
    int typeof_(int file, int record) const {
        return static_cast<int>((mixed_ ? file * records_ + record : file) % types_);
    }
    std::int64_t indexof(int file, int record) const {
        return mixed_ ? (file * records_ + record) / types_ : file / types_ * records_ + record;
    }

private:
    bool mixed_;
    std::int64_t types_;
    std::int64_t files_ = 0;
    std::int64_t records_ = 0;
};

std::string numberedname(const char* stem, int number) {
    return Text<40>().format("%s%03d", stem, number).c_str();
}

// The number of the key at a place of a type. A number of entries has no prime factor above 3000, so this
// prime leads each place to another entry.
std::int64_t keynumber(const SampleOptions& options, int fileclass, int type, std::int64_t index) {
    const std::int64_t entries = std::int64_t{options.files} * options.entries;
    const std::int64_t first = std::int64_t{fileclass * options.types + type} * 618033989;
    return (index * 1000003 + first) % entries + 1;
}

void writeentries(SampleTree& tree) {
    for (int i = 0; i < tree.options.files && !tree.failed(); ++i) {
        DataFile file{.fileclass = 0, .name = numberedname("DBSF", i + 1)};
        for (int entry = 0; entry < tree.options.entries; ++entry)
            file.records.push_back(
                {tree.content.key(std::int64_t{i} * tree.options.entries + entry + 1), {}});
        tree.write(file);
    }
}

void writeexperiments(SampleTree& tree, int fileclass) {
    const ClassLayout layout(tree.options, fileclass);
    for (int i = 0; i < layout.files() && !tree.failed(); ++i) {
        DataFile file{.fileclass = fileclass,
                      .name = numberedname("EXP", i + 1),
                      .type = typenameof(fileclass, i % tree.options.types)};
        for (int record = 0; record < layout.records(); ++record) {
            const int type = layout.typeof_(i, record);
            const std::int64_t number = keynumber(tree.options, fileclass, type, layout.indexof(i, record));
            file.records.push_back({tree.content.key(number), typenameof(fileclass, type)});
        }
        tree.write(file);
    }
}

void writesidefiles(SampleTree& tree) {
    for (int fileclass = 1; fileclass < fileclasscount; ++fileclass) {
        const FileClass& row = fileclasses[fileclass];
        for (int type = 0; type < tree.options.types; ++type)
            tree.write(SideFile{std::string(row.directory) + "/" + numberedname("TYPE", type + 1) + ".CNF",
                                row.sideheader});
    }
    for (const char* path : {"ALL.CMP", "WARD.CMP", "Library/ENTERIC.LIB/REF.CMP",
                             "Library/ENTERIC.LIB/TYPING.CMP", "Library/SOIL.LIB/REF.CMP"})
        tree.write(SideFile{path, compheader});
}

// Makes the directory if it is missing. Returns why it can't be used; empty when it can.
std::string prepare(const filesystem::path& directory) {
    std::error_code error;
    filesystem::create_directories(directory, error);
    if (error)
        return "can't make the directory '" + directory.string() + "': " + error.message();
    const bool empty = filesystem::is_empty(directory, error);
    if (error)
        return "can't read the directory '" + directory.string() + "': " + error.message();
    return empty ? "" : "the directory '" + directory.string() + "' is not empty";
}

// Whether the path can stand in a settings file.
bool fitsline(const std::string& path) {
    return path.size() <= maxsettingsline && path.find_first_of("\r\n") == std::string::npos;
}

SampleOptions withroomfordamages(SampleOptions options) {
    options.files = std::min(options.files, maxfiles - damageroom);
    options.experiments = std::min(options.experiments, maxfiles - damageroom);
    options.types = std::min(options.types, maxtypes / (fileclasscount - 1) - 1);
    return options;
}

void writeall(SampleTree& tree) {
    tree.makedirectories();
    writeentries(tree);
    for (int fileclass = 1; fileclass < fileclasscount; ++fileclass)
        writeexperiments(tree, fileclass);
    writesidefiles(tree);
    makedamages(tree);
    if (!tree.options.home.empty())
        tree.writesettings();
}

} // namespace

std::string unusable(const SampleOptions& options) {
    for (const SampleNumber& number : samplenumbers) {
        const int value = options.*number.value;
        if (value < number.least || value > number.most)
            return Text<120>()
                .format("--%s: %d is not from %d to %d", number.name, value, number.least, number.most)
                .c_str();
    }
    for (const std::string& name : options.damages)
        if (!isdamagename(name))
            return "--damage: there is no damage '" + name + "'";
    if (options.home.empty() != options.name.empty())
        return "--home and --name go together";
    if (options.name.find_first_of("/\\\r\n") != std::string::npos)
        return "--name: a name has no slash, backslash or line end";
    return options.directory.empty() ? "DIRECTORY: the path is empty" : "";
}

SampleResult makeSample(const SampleOptions& options) {
    SampleResult refused;
    refused.failure = unusable(options);
    if (!refused.failure.empty())
        return refused;
    const filesystem::path directory = resolvePath(options.directory);
    refused.failure = prepare(directory);
    if (!refused.failure.empty())
        return refused;
    std::error_code error;
    const std::string root = filesystem::canonical(directory, error).string();
    if (error)
        refused.failure = "can't find the directory '" + directory.string() + "': " + error.message();
    else if (!options.home.empty() && !fitsline(root))
        refused.failure = "the path does not fit into a line of a settings file: '" + root + "'";
    if (!refused.failure.empty())
        return refused;
    SampleTree tree(root, options.damages.empty() ? options : withroomfordamages(options));
    writeall(tree);
    return tree.result;
}
