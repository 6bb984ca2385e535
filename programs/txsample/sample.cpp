#include "sample.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
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

std::string numberedname(const char* stem, int number) {
    return Text<40>().format("%s%03d", stem, number).c_str();
}

// The number of the key of a record of a type, records counted from 0. A number of entries has no prime
// factor above 3000, so this prime leads each record to another entry.
std::int64_t keynumber(const SampleOptions& options, int fileclass, int type, std::int64_t index) {
    const std::int64_t entries = std::int64_t{options.files} * options.entries;
    const std::int64_t first = std::int64_t{fileclass * options.types + type} * 618033989;
    return (index * 1000003 + first) % entries + 1;
}

void writeentries(SampleTree& tree) {
    for (int i = 0; i < tree.options.files; ++i) {
        DataFile file{.fileclass = 0, .name = numberedname("DBSF", i + 1)};
        for (int entry = 0; entry < tree.options.entries; ++entry)
            file.records.push_back(
                {tree.content.key(std::int64_t{i} * tree.options.entries + entry + 1), {}});
        tree.write(file);
    }
}

struct ClassSize {
    std::int64_t files = 0;
    std::int64_t records = 0; // in each
};

// Gel files mix the types of their records; any other file has one type.
bool mixestypes(int fileclass) {
    return fileclass == 1;
}

// As many as are asked for, where there are entries enough: each record of a type names an entry of its own.
ClassSize classsize(const SampleOptions& options, int fileclass) {
    const std::int64_t types = options.types;
    const std::int64_t entries = std::int64_t{options.files} * options.entries;
    const std::int64_t files = std::min<std::int64_t>(options.experiments, types * entries);
    if (files == 0)
        return {};
    const std::int64_t possible =
        mixestypes(fileclass) ? types * entries / files : entries / ((files + types - 1) / types);
    return {files, std::min<std::int64_t>(fileclass == 5 ? 1 : options.records, possible)};
}

void writeexperiments(SampleTree& tree, int fileclass) {
    const auto [files, records] = classsize(tree.options, fileclass);
    const int types = tree.options.types;
    for (int i = 0; i < files; ++i) {
        DataFile file{.fileclass = fileclass,
                      .name = numberedname("EXP", i + 1),
                      .type = typenameof(fileclass, i % types)};
        for (int record = 0; record < records; ++record) {
            const std::int64_t number = i * records + record; // among those of the class
            const bool mixed = mixestypes(fileclass);
            const int type = static_cast<int>((mixed ? number : i) % types);
            const std::int64_t index = mixed ? number / types : i / types * records + record;
            file.records.push_back({tree.content.key(keynumber(tree.options, fileclass, type, index)),
                                    typenameof(fileclass, type)});
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

// Makes the directory if it is missing, and gives its absolute path.
std::string prepare(const filesystem::path& directory) {
    std::error_code error;
    filesystem::create_directories(directory, error);
    failon(error, "make the directory", directory);
    const bool empty = filesystem::is_empty(directory, error);
    failon(error, "read the directory", directory);
    if (!empty)
        throw std::runtime_error("the directory '" + directory.string() + "' is not empty");
    std::string root = filesystem::canonical(directory, error).string();
    failon(error, "find the directory", directory);
    return root;
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
    const std::string root = prepare(resolvePath(options.directory));
    const bool fitsline = root.size() <= maxsettingsline && root.find_first_of("\r\n") == std::string::npos;
    if (!options.home.empty() && !fitsline)
        throw std::runtime_error("the path does not fit into a line of a settings file: '" + root + "'");
    SampleTree tree(root, options.damages.empty() ? options : withroomfordamages(options));
    writeall(tree);
    return tree.result;
}
