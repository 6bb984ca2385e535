#include "damage.h"

#include <algorithm>
#include <string_view>

#include "model/fileclass.h"
#include "tree.h"

namespace {

constexpr std::int64_t firstdamagekey = 4000001; // after the keys of the largest sound sample
constexpr std::int64_t keysofdamage = 1000;

std::string othercase(std::string text) {
    for (char& byte : text) {
        if (byte >= 'a' && byte <= 'z')
            byte = static_cast<char>(byte - 'a' + 'A');
        else if (byte >= 'A' && byte <= 'Z')
            byte = static_cast<char>(byte - 'A' + 'a');
    }
    return text;
}

std::vector<std::string> keysfrom(const SampleTree& tree, std::int64_t first, int count) {
    std::vector<std::string> keys;
    keys.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        keys.push_back(tree.content.key(first + i));
    return keys;
}

// A data file with a record for each key, all of the class's first type.
DataFile filewith(int fileclass, const char* name, const std::vector<std::string>& keys) {
    const std::string type = fileclass == 0 ? "" : typenameof(fileclass, 0);
    DataFile file{.fileclass = fileclass, .name = name, .type = type};
    for (const std::string& key : keys)
        file.records.push_back({key, type});
    return file;
}

// A group of three over two files, a pair in one file, a pair that differs in case, a pair of 60 bytes and,
// where there is a sound entry, one that has it for its first.
void makeduplicates(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 4);
    const std::string longest = tree.content.key(first + 4, maxkeylength);
    tree.write(filewith(0, "DUPL1", {keys[0], keys[1], keys[2], keys[2], longest, keys[3]}));
    DataFile second = filewith(0, "DUPL2", {keys[0], othercase(keys[1]), longest, keys[0]});
    if (tree.options.files > 0)
        second.records.push_back({tree.content.key(1), {}});
    tree.write(second);
}

// Within two types of the gel class, where it has two, and within one of the character class.
void makeexperimentduplicates(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 4);
    tree.write(filewith(0, "EXPDUPL", keys));
    DataFile gels = filewith(1, "DUPL", {keys[0], keys[0], keys[3]});
    const std::string othertype = typenameof(1, tree.options.types - 1);
    gels.records.push_back({keys[1], othertype});
    gels.records.push_back({keys[1], othertype});
    tree.write(gels);
    tree.write(filewith(2, "DUPL", {keys[2], keys[0], keys[2], keys[2]}));
}

void makeblankkeys(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 2);
    tree.write(filewith(0, "BLANK", {keys[0], "", keys[1], "", ""}));
}

void makeorphans(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 6);
    tree.write(filewith(1, "ORPHAN", {keys[0], keys[1], keys[2]}));
    tree.write(filewith(2, "ORPHAN", {keys[0], keys[3], keys[4]}));
    tree.write(filewith(5, "ORPHAN", {keys[5]}));
}

void makeemptyfiles(SampleTree& tree, std::int64_t) {
    for (const int fileclass : {0, 1, 5})
        tree.write(filewith(fileclass, "EMPTY", {}));
}

void makecorruptfiles(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 1);
    for (const int fileclass : {0, 1, 5}) {
        DataFile file = filewith(fileclass, "BADTAG", keys);
        file.brokentag = true;
        tree.write(file);
    }
    for (const int fileclass : {0, 4, 5}) {
        DataFile file = filewith(fileclass, "BADHEAD", keys);
        file.header = "TX-DBS-v1.1";
        tree.write(file);
    }
    for (const int fileclass : {0, 2, 3}) {
        DataFile file = filewith(fileclass, "BADCOUNT", keys);
        file.statedcount = fileclass == 2 ? 0 : maxrecords + 1;
        tree.write(file);
    }
}

// The last key of each file is cut off and reads as "???" once among the entries and once in each type.
void maketruncated(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 4);
    for (const int fileclass : {0, 1, 2})
        tree.writecut(filewith(fileclass, "CUTSHORT", keys));
}

void makesidefiles(SampleTree& tree, std::int64_t) {
    tree.write(SideFile{"fprint/BADHEAD.CNF", fileclasses[2].sideheader});
    tree.write(SideFile{"seq/BADTAG.CNF", fileclasses[3].sideheader, 5, true});
    tree.write(SideFile{"BADTAG.CMP", compheader, 2, true});
    tree.write(SideFile{"SHORT.CMP", "TX-CO", 0});
    tree.write(SideFile{"Library/SOIL.LIB/SHORT.CMP", "TX-COMP-v1.", 0});
}

void makemissingdirectories(SampleTree& tree, std::int64_t) {
    tree.remove("images");
    tree.remove("bundles");
}

// Two files whose names differ in case can't both be written by their names, which find the file that is
// there.
void makecasevariants(SampleTree& tree, std::int64_t first) {
    const std::vector<std::string> keys = keysfrom(tree, first, 6);
    for (const int fileclass : {0, 1, 3}) {
        DataFile file = filewith(fileclass, "small", {keys[0], keys[1]});
        file.extension = fileclass == 0 ? "dbs" : "def";
        tree.write(file);
    }
    tree.write(filewith(0, "TWIN", {keys[2], keys[3]}));
    DataFile passedover = filewith(0, "twin", {keys[4], keys[5]});
    passedover.extension = "new";
    tree.write(passedover);
    tree.rename("DBASE/twin.new", "DBASE/twin.dbs");
    tree.rename("seq", "Seq");
}

void makeoddbytes(SampleTree& tree, std::int64_t first) {
    using namespace std::string_view_literals;
    std::vector<SampleRecord> records;
    for (const std::string_view key :
         {"M\xC3\xBCller 1"sv, "M\xFCller 2"sv, "\xD1\x88\xD1\x82\xD0\xB0\xD0\xBC\xD0\xBC 3"sv, "\x80uro 4"sv,
          "100% %s %n 5"sv, "\"quoted\" '6'"sv, "two\nlines 7"sv, "nul 8\0hidden"sv, "tab\t9\x7F"sv,
          " blanks 10 "sv})
        records.push_back({std::string(key), typenameof(2, 0)});
    for (const int capacity : {200, 24, 8}) // a capacity below the length is a field without padding
        records.push_back({tree.content.key(first + capacity, 24), typenameof(2, 0), capacity});
    records.push_back(
        {tree.content.key(first, keycapacity), typenameof(2, 0)}); // a byte longer than a key can be
    for (const int fileclass : {0, 2}) {
        DataFile file = filewith(fileclass, "ODDBYTES", {});
        file.records = records;
        tree.write(file);
    }
}

} // namespace

const std::vector<Damage> damagetable = {
    {"duplicates", makeduplicates},
    {"experiment-duplicates", makeexperimentduplicates},
    {"blank-keys", makeblankkeys},
    {"orphans", makeorphans},
    {"empty-files", makeemptyfiles},
    {"corrupt-files", makecorruptfiles},
    {"truncated", maketruncated},
    {"side-files", makesidefiles},
    {"missing-directories", makemissingdirectories},
    {"case-variants", makecasevariants},
    {"odd-bytes", makeoddbytes},
};

bool isdamagename(const std::string& name) {
    return name == "all" || std::any_of(damagetable.begin(), damagetable.end(),
                                        [&name](const Damage& damage) { return name == damage.name; });
}

void makedamages(SampleTree& tree) {
    const std::vector<std::string>& names = tree.options.damages;
    const auto wanted = [&names](const char* name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    std::int64_t firstkey = firstdamagekey;
    for (const Damage& damage : damagetable) {
        if (wanted("all") || wanted(damage.name)) {
            damage.make(tree, firstkey);
            tree.result.damages.push_back(damage.name);
        }
        firstkey += keysofdamage;
    }
}
