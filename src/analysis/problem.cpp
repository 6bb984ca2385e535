#include "analysis/problem.h"

#include "model/database.h"
#include "model/exptype.h"
#include "model/fileclass.h"

namespace {

struct Solution {
    int command; // 0: the kind has no such solution
    const char* label;
    bool loses; // deletes a file or clears a key
    int (*apply)(TSXdatabase&, const TSXproblem&);
};

// For the operations that have no result of their own.
template <class Operation> int done(Operation operation) {
    operation();
    return 1;
}

constexpr int maxsolutions = 2;
using Solutions = Solution[maxsolutions];

// By kind, from 1; slot 0 is that of an unknown kind.
constexpr Solutions solutions[] = {
    {},
    {{removeemptyfilescommand, "Remove all empty files", true,
      [](TSXdatabase& d, const TSXproblem& p) { return done([&] { d.removeemptyfiles(p.subkind); }); }}},
    {{removeduplicatescommand, "Remove all duplicate keys", true,
      [](TSXdatabase& d, const TSXproblem& p) { return done([&] { d.removeduplicates(p.subkind); }); }},
     {renameduplicatescommand, "Rename all duplicate keys", false,
      [](TSXdatabase& d, const TSXproblem& p) { return done([&] { d.renameduplicates(p.subkind); }); }}},
    {{createkeyscommand, "Create keys", false,
      [](TSXdatabase& d, const TSXproblem&) { return done([&] { d.createkeys(); }); }}},
    {{removeexperimentkeyscommand, "Remove these experiment keys", true,
      [](TSXdatabase& d, const TSXproblem&) { return done([&] { d.removeexperimentkeys(); }); }},
     {adddatabaseentriescommand, "Add database entries for these keys", false,
      [](TSXdatabase& d, const TSXproblem&) { return done([&] { d.adddatabaseentries(); }); }}},
    {{createdirectorycommand, "Create directory", false,
      [](TSXdatabase& d, const TSXproblem& p) { return d.createdirectory(p.name); }}},
    {{deletecorruptfilecommand, "Delete this corrupted file", true,
      [](TSXdatabase& d, const TSXproblem& p) { return d.deletecorruptfile(p.subkind, p.fileindex); }}},
    {{deletefilecommand, "Delete this corrupted file", true,
      [](TSXdatabase& d, const TSXproblem& p) { return d.deletefile(p.name); }}},
};

// The solution of that number; none if the kind does not have it.
const Solution* findsolution(int kind, int number) {
    if (kind < emptyfiles || kind > corruptsidefile || number < 1 || number > maxsolutions)
        return nullptr;
    const Solution& found = solutions[kind][number - 1];
    return found.command != 0 ? &found : nullptr;
}

} // namespace

TSXproblem::TSXproblem(TSXdatabase& owner, int problemkind, int problemsubkind, const char* subject)
    : kind(problemkind), subkind(problemsubkind), name(subject), message("Unknown error"), database(owner) {
    makemessage();
}

void TSXproblem::makemessage() {
    const bool knownclass = subkind >= 0 && subkind < fileclasscount;
    switch (kind) {
    case emptyfiles:
        if (subkind == 0)
            message = "There are empty database file(s)";
        else if (knownclass)
            message.format("There are empty experiment file(s)     (Experiment class '%s')",
                           fileclasses[subkind].emptylabel);
        break;
    case duplicatekeys:
        if (subkind == 0)
            message = "Some database entries have identical keys";
        else if (const TSXexptype* type = database.gettype(subkind))
            message.format("Some experiment entries have identical keys     (Experiment type '%s')",
                           type->name.c_str());
        break;
    case blankkeys:
        message = "Some database entries have no keys";
        break;
    case orphankeys:
        message = "Some experiment keys have no database entries";
        break;
    case missingdirectory:
        message.format("Missing database directory '%s'", name.c_str());
        break;
    case corruptdatafile:
        if (knownclass && *fileclasses[subkind].damagelabel != '\0')
            message.format("The %s file '%s' is corrupted", fileclasses[subkind].damagelabel, name.c_str());
        break;
    case corruptsidefile:
        message.format("The file '%s' is corrupted", name.c_str());
        break;
    default:
        break;
    }
}

int TSXproblem::solutioncount() const {
    int count = 0;
    while (findsolution(kind, count + 1) != nullptr)
        ++count;
    return count;
}

int TSXproblem::solutioncommand(int number) const {
    const Solution* solution = findsolution(kind, number);
    return solution != nullptr ? solution->command : 0;
}

const char* TSXproblem::solutionlabel(int number) const {
    const Solution* solution = findsolution(kind, number);
    return solution != nullptr ? solution->label : "";
}

bool TSXproblem::solutionloses(int number) const {
    const Solution* solution = findsolution(kind, number);
    return solution != nullptr && solution->loses;
}

int TSXproblem::solve(int number) const {
    const Solution* solution = findsolution(kind, number);
    return solution != nullptr ? solution->apply(database, *this) : 0;
}

void TSXdatabase::addproblem(std::unique_ptr<TSXproblem> problem) {
    problems.push_back(std::move(problem));
    ++problemcount;
}

TSXproblem* TSXdatabase::getproblem(int index) const {
    return index >= 1 && index <= problemcount ? problems[static_cast<std::size_t>(index)].get() : nullptr;
}

void TSXdatabase::clearproblems() {
    problems.resize(1);
    problemcount = 0;
}
