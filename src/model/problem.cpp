#include "model/problem.h"

#include <algorithm>

#include "model/database.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "platform/system/utf8.h"

namespace {

struct Solution {
    int command; // 0: the kind has no such solution
    const char* label;
    Cost cost;
};

constexpr int maxsolutions = 2;

struct Kind {
    const char* word;
    Solution solutions[maxsolutions];
};

// From 1; slot 0 is that of an unknown kind.
constexpr Kind kinds[] = {
    {"", {}},
    {"empty", {{removeemptyfilescommand, "Remove all empty files", Cost::deletes}}},
    {"duplicate",
     {{removeduplicatescommand, "Remove all duplicate keys", Cost::clears},
      {renameduplicatescommand, "Rename all duplicate keys", Cost::safe}}},
    {"blank", {{createkeyscommand, "Create keys", Cost::safe}}},
    {"orphan",
     {{removeexperimentkeyscommand, "Remove these experiment keys", Cost::clears},
      {adddatabaseentriescommand, "Add database entries for these keys", Cost::safe}}},
    {"missing", {{createdirectorycommand, "Create directory", Cost::safe}}},
    {"corrupt", {{deletecorruptfilecommand, "Delete this corrupted file", Cost::deletes}}},
    {"side", {{deletefilecommand, "Delete this corrupted file", Cost::deletes}}},
};

bool isknown(int kind) {
    return kind >= emptyfiles && kind <= corruptsidefile;
}

// The solution of that number; none if the kind does not have it.
const Solution* findsolution(int kind, int number) {
    if (!isknown(kind) || number < 1 || number > maxsolutions)
        return nullptr;
    const Solution& found = kinds[kind].solutions[number - 1];
    return found.command != 0 ? &found : nullptr;
}

// With what an id can't hold, or would not come back from a terminal, written in hex.
std::string encoded(std::string_view bytes) {
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

Cost TSXproblem::solutioncost(int number) const {
    const Solution* solution = findsolution(kind, number);
    return solution != nullptr ? solution->cost : Cost::safe;
}

std::string TSXproblem::subject() const {
    const TSXexptype* type = kind == duplicatekeys && subkind != 0 ? database.gettype(subkind) : nullptr;
    switch (kind) {
    case emptyfiles:
        return subkind >= 0 && subkind < fileclasscount ? fileclasses[subkind].directory : "";
    case missingdirectory:
    case corruptsidefile:
        return database.diskname(name.view());
    case corruptdatafile:
        return database.diskname(Text<1000>()
                                     .format("%s/%s/%s.%s", database.directory.c_str(),
                                             fileclasses[subkind].directory, name.c_str(),
                                             fileclasses[subkind].extension)
                                     .view());
    default:
        return type == nullptr ? "Database"
                               : std::string(fileclasses[type->classid].directory) + "/" + type->name.c_str();
    }
}

std::string TSXproblem::id() const {
    return kindword(kind) + (':' + encoded(subject()));
}

const char* costword(Cost cost) {
    constexpr const char* words[] = {"safe", "clears", "deletes"};
    return words[static_cast<int>(cost)];
}

const char* kindword(int kind) {
    return isknown(kind) ? kinds[kind].word : "";
}

int findkind(std::string_view numberorword) {
    for (int kind = emptyfiles; isknown(kind); ++kind)
        if (numberorword == std::to_string(kind) || numberorword == kinds[kind].word)
            return kind;
    return 0;
}
