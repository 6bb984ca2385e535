#include "model/problem.h"

#include <algorithm>
#include <iterator>

#include "model/database.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "platform/system/utf8.h"

namespace {

// None for a sub-kind that is no class.
const FileClass* classin(const TSXproblem& problem) {
    return problem.subkind >= 0 && problem.subkind < fileclasscount ? &fileclasses[problem.subkind] : nullptr;
}

const TSXexptype* typein(const TSXproblem& problem) {
    return problem.database.gettype(problem.subkind);
}

std::string emptymessage(const TSXproblem& problem) {
    if (problem.subkind == 0)
        return "There are empty database file(s)";
    const FileClass* of = classin(problem);
    return of == nullptr
               ? ""
               : "There are empty experiment file(s)     (Experiment class '" + std::string(of->label) + "')";
}

std::string duplicatemessage(const TSXproblem& problem) {
    if (problem.subkind == 0)
        return "Some database entries have identical keys";
    const TSXexptype* of = typein(problem);
    return of == nullptr ? ""
                         : "Some experiment entries have identical keys     (Experiment type '" +
                               std::string(of->name) + "')";
}

std::string corruptmessage(const TSXproblem& problem) {
    const FileClass* of = classin(problem);
    return of == nullptr || *of->damagelabel == '\0'
               ? ""
               : "The " + std::string(of->damagelabel) + " file '" + problem.name + "' is corrupted";
}

std::string classsubject(const TSXproblem& problem) {
    return classin(problem) != nullptr ? classin(problem)->directory : "";
}

std::string filesubject(const TSXproblem& problem) {
    const FileClass& of = *classin(problem);
    return problem.database.diskname(std::string(problem.database.directory) + '/' + of.directory + '/' +
                                     problem.name + '.' + of.extension);
}

std::string typesubject(const TSXproblem& problem) {
    const TSXexptype* of = problem.subkind != 0 ? typein(problem) : nullptr;
    return of == nullptr ? "Database"
                         : std::string(fileclasses[of->classid].directory) + '/' + of->name.c_str();
}

std::string namesubject(const TSXproblem& problem) {
    return problem.database.diskname(problem.name);
}

constexpr const char* nothinglost = "Nothing is lost.";
constexpr const char* keyslost = "Keys are lost from the data.";
constexpr const char* deletedatonce = "Deleted at once; the undo file keeps it for 30 days or more.";

using Database = TSXdatabase;
using Problem = TSXproblem;
using Key = TSXkeyentry;

// From 1, in the order of their numbers; slot 0 is that of an unknown kind.
constexpr KindOfProblem kinds[] = {
    {0,
     "",
     "problem",
     "problems",
     "",
     [](const Problem&) { return std::string(); },
     [](const Problem&) { return std::string(); },
     nullptr,
     nullptr,
     {{0, "", Cost::safe, "", "", nullptr}}},
    {emptyfiles,
     "empty",
     "class with empty files",
     "classes with empty files",
     "Data files of this class are sound and hold no record. They do no harm.",
     emptymessage,
     classsubject,
     nullptr,
     [](const Problem&, const TSXdatafile& file, int) { return file.isempty(); },
     {{removeemptyfilescommand, "Remove all empty files", Cost::deletes, "deletes these files", deletedatonce,
       nullptr}}},
    {duplicatekeys,
     "duplicate",
     "type with duplicate keys",
     "types with duplicate keys",
     "Several records of one type have the same key, so that what belongs to which of them can't be told.",
     duplicatemessage,
     typesubject,
     [](const Problem& p, const Key& key, int type) {
         return type == p.subkind && !key.key.empty() && key.occurrences(type) > 1;
     },
     nullptr,
     {{removeduplicatescommand, "Remove all duplicate keys", Cost::clears,
       "keeps the key in its first record and takes it from all later ones, whose data stay without a key",
       keyslost, [](Database& d, const Problem& p) { d.removeduplicates(p.subkind); }},
      {renameduplicatescommand, "Rename all duplicate keys", Cost::safe,
       "keeps the key in its first record; each later one gets it with a number after it, /#2, /#3 …",
       "The end of a key of more than 56 bytes is lost.",
       [](Database& d, const Problem& p) { d.renameduplicates(p.subkind); }}}},
    {blankkeys,
     "blank",
     "set of entries without keys",
     "sets of entries without keys",
     "Several database entries have no key, so that no experiment can belong to them.",
     [](const Problem&) { return std::string("Some database entries have no keys"); },
     typesubject,
     [](const Problem&, const Key& key, int type) { return type == 0 && key.key.empty(); },
     nullptr,
     {{createkeyscommand, "Create keys", Cost::safe,
       "gives each of these entries a key of its own, dbkey/#2, dbkey/#3 …", nothinglost,
       [](Database& d, const Problem&) { d.createkeys(); }}}},
    {orphankeys,
     "orphan",
     "set of keys without entries",
     "sets of keys without entries",
     "Experiments have keys of which there is no database entry: their results belong to nothing.",
     [](const Problem&) { return std::string("Some experiment keys have no database entries"); },
     typesubject,
     [](const Problem&, const Key& key, int) { return key.isorphan(); },
     nullptr,
     {{removeexperimentkeyscommand, "Remove these experiment keys", Cost::clears,
       "takes the key from all these records, whose results stay without a key", keyslost,
       [](Database& d, const Problem&) { d.removeexperimentkeys(); }},
      {adddatabaseentriescommand, "Add database entries for these keys", Cost::safe,
       "makes an entry for each of these keys, in new files in DBASE", nothinglost,
       [](Database& d, const Problem&) { d.adddatabaseentries(); }}}},
    {missingdirectory,
     "missing",
     "missing directory",
     "missing directories",
     "A directory that a database has isn't there. Where it held files, look whether it was moved, or "
     "whether a "
     "share isn't mounted, before it is made anew.",
     [](const Problem& p) { return "Missing database directory '" + p.name + "'"; },
     namesubject,
     nullptr,
     nullptr,
     {{createdirectorycommand, "Create directory", Cost::safe, "makes the directory, empty", nothinglost,
       nullptr}}},
    {corruptdatafile,
     "corrupt",
     "corrupted file",
     "corrupted files",
     "A data file has no valid header, no usable number of records or a chunk that makes no sense. Nothing "
     "of it "
     "counts; a copy from a backup may be better.",
     corruptmessage,
     filesubject,
     nullptr,
     [](const Problem& p, const TSXdatafile&, int position) { return position == p.fileindex; },
     {{deletecorruptfilecommand, "Delete this corrupted file", Cost::deletes, "deletes the file",
       deletedatonce, nullptr}}},
    {corruptsidefile,
     "side",
     "corrupted side file",
     "corrupted side files",
     "A side file, which describes an experiment type or a comparison, has no valid header or a chunk that "
     "makes "
     "no sense.",
     [](const Problem& p) { return "The file '" + p.name + "' is corrupted"; },
     namesubject,
     nullptr,
     nullptr,
     {{deletefilecommand, "Delete this corrupted file", Cost::deletes, "deletes the file", deletedatonce,
       nullptr}}},
};
static_assert(std::ranges::all_of(kinds,
                                  [](const KindOfProblem& kind) { return &kind == kinds + kind.number; }),
              "a kind stands in the row of its number");

} // namespace

std::span<const KindOfProblem> kindsofproblem() {
    return std::span(kinds).subspan(1);
}

const KindOfProblem& kindofproblem(int number) {
    return kinds[number > 0 && number < std::ssize(kinds) ? number : 0];
}

int findkind(std::string_view numberorword) {
    for (const KindOfProblem& kind : kindsofproblem())
        if (numberorword == std::to_string(kind.number) || numberorword == kind.word)
            return kind.number;
    return 0;
}

const char* costword(Cost cost) {
    constexpr const char* words[] = {"safe", "clears", "deletes"};
    return words[static_cast<int>(cost)];
}

std::string encodedforid(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const Utf8Character character = utf8Character(bytes);
        const bool control = character.number < 0x20 || (character.number >= 0x7F && character.number < 0xA0);
        const std::size_t length = std::max(character.length, std::size_t{1});
        for (const char byte : bytes.substr(0, length))
            if (control || character.number == '%')
                text += Text<4>().format("%%%02x", static_cast<unsigned char>(byte)).view();
            else
                text += byte;
        bytes.remove_prefix(length);
    }
    return text;
}

TSXproblem::TSXproblem(TSXdatabase& owner, int problemkind, int problemsubkind, std::string_view subject)
    : kind(problemkind), subkind(problemsubkind), name(subject), database(owner) {
    message = facts().message(*this);
    if (message.empty())
        message = "Unknown error";
    message.shrink_to_fit(); // there may be very many problems
}

int TSXproblem::solutioncount() const {
    return maxsolutions -
           static_cast<int>(std::ranges::count(facts().solutions, 0, &KindOfProblem::Solution::command));
}

const KindOfProblem::Solution& TSXproblem::solution(int number) const {
    const bool has = number >= 1 && number <= solutioncount();
    return has ? facts().solutions[number - 1] : kinds[0].solutions[0];
}

const std::string& TSXproblem::id() const {
    if (knownid.empty())
        knownid = facts().word + (':' + encodedforid(facts().subject(*this)));
    return knownid;
}

bool TSXproblem::isunread() const {
    if (kind != corruptdatafile || fileindex == 0)
        return kind == corruptsidefile && database.isunread(name);
    const auto& files = database.lists[static_cast<std::size_t>(subkind)]->files;
    return files[static_cast<std::size_t>(fileindex)]->unread;
}
