#include "model/problem.h"

#include "model/database.h"
#include "model/exptype.h"
#include "model/fileclass.h"

namespace {

struct Solution {
    int command; // 0: the kind has no such solution
    const char* label;
    bool loses; // deletes a file or clears a key
};

constexpr int maxsolutions = 2;
using Solutions = Solution[maxsolutions];

// By kind, from 1; slot 0 is that of an unknown kind.
constexpr Solutions solutions[] = {
    {},
    {{removeemptyfilescommand, "Remove all empty files", true}},
    {{removeduplicatescommand, "Remove all duplicate keys", true},
     {renameduplicatescommand, "Rename all duplicate keys", false}},
    {{createkeyscommand, "Create keys", false}},
    {{removeexperimentkeyscommand, "Remove these experiment keys", true},
     {adddatabaseentriescommand, "Add database entries for these keys", false}},
    {{createdirectorycommand, "Create directory", false}},
    {{deletecorruptfilecommand, "Delete this corrupted file", true}},
    {{deletefilecommand, "Delete this corrupted file", true}},
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
