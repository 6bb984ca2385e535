#include "sample.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <numeric>

#include "damage.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "platform/system/path.h"
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

constexpr std::size_t longestline = 598; // of a settings file
constexpr int damageroom = 20;           // files of a class that damages, and the repair of orphans, may add

// The experiment files of one class. No two records of a type have the same place, and places are below the
// number of entries, so that each names an entry of its own.
class ClassPlan {
public:
    ClassPlan(const SampleOptions& options, int fileclass) : mixed_(fileclass == 1), types_(options.types) {
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
    std::int64_t placeof(int file, int record) const {
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

// The number of the key at a place of a type. The prime is no factor of any number of entries, so all places
// differ.
std::int64_t keynumber(const SampleOptions& options, int fileclass, int type, std::int64_t place) {
    const std::int64_t entries = std::int64_t{options.files} * options.entries;
    return (place * 1000003 + fileclass * 7919 + type * 101) % entries + 1;
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
    const ClassPlan plan(tree.options, fileclass);
    for (int i = 0; i < plan.files() && !tree.failed(); ++i) {
        DataFile file{.fileclass = fileclass,
                      .name = numberedname("EXP", i + 1),
                      .type = typenameof(fileclass, i % tree.options.types)};
        for (int record = 0; record < plan.records(); ++record) {
            const int type = plan.typeof_(i, record);
            const std::int64_t number = keynumber(tree.options, fileclass, type, plan.placeof(i, record));
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
        tree.write(SideFile{path, "TX-COMP-v1.0"});
}

// Why the options can't be used; empty when they can.
std::string unusable(const SampleOptions& options) {
    for (const SampleNumber& number : samplenumbers) {
        const int value = options.*number.value;
        if (value < number.least || value > number.most)
            return Text<120>()
                .format("%s: %d is not from %d to %d", number.name, value, number.least, number.most)
                .c_str();
    }
    for (const std::string& name : options.damages)
        if (!isdamagename(name))
            return "no such damage: " + name;
    if (options.home.empty() != options.name.empty())
        return "home and name go together";
    return {};
}

// The directory's full path, made if missing; empty when it can't be had or used, and failure tells why.
std::string prepareroot(const SampleOptions& options, std::string& failure) {
    std::error_code error;
    const std::string shown = "'" + options.directory + "'";
    const filesystem::path wanted = resolvePath(options.directory);
    filesystem::create_directories(wanted, error);
    filesystem::path root = filesystem::weakly_canonical(wanted, error);
    if (error || !filesystem::is_directory(root, error))
        failure = "can't make the directory " + shown;
    else if (!filesystem::is_empty(root, error) && !error)
        failure = "the directory " + shown + " is not empty";
    if (error)
        failure += ": " + error.message();
    if (!failure.empty())
        return {};
    const std::string path = root.string();
    if (!options.home.empty() &&
        (path.size() > longestline || path.find_first_of("\r\n") != std::string::npos))
        failure = "the path of " + shown + " does not fit into a line of a settings file";
    return path;
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

SampleResult makeSample(const SampleOptions& options) {
    SampleResult refused;
    refused.failure = unusable(options);
    const std::string root = refused.failure.empty() ? prepareroot(options, refused.failure) : "";
    if (!refused.failure.empty())
        return refused;
    SampleTree tree(root, options.damages.empty() ? options : withroomfordamages(options));
    writeall(tree);
    return tree.result;
}
