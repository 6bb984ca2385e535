// One line of the problem list: what is wrong, in words, and the solutions that are offered. One problem
// stands for all keys or files of its kind in one type or class.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/cobject.h"
#include "platform/system/filestate.h"
#include "platform/system/text.h"

class TSXdatabase;

enum ProblemKind : std::int32_t {
    emptyfiles = 1,    // sub-kind: file class
    duplicatekeys = 2, // sub-kind: experiment type
    blankkeys = 3,
    orphankeys = 4,
    missingdirectory = 5, // name: its path
    corruptdatafile = 6,  // sub-kind: file class; name: base name
    corruptsidefile = 7,  // name: its path
};

enum SolutionCommand : int {
    removeemptyfilescommand = 7001,
    removeduplicatescommand,
    renameduplicatescommand,
    createkeyscommand,
    removeexperimentkeyscommand,
    adddatabaseentriescommand,
    createdirectorycommand,
    deletecorruptfilecommand,
    deletefilecommand,
    lastsolutioncommand = 7099, // up to here the numbers are kept for solutions
};

// What a solution takes from the data.
enum class Cost : std::uint8_t {
    safe,    // nothing: it changes keys or makes something
    clears,  // keys
    deletes, // a file, at once
};
const char* costword(Cost cost);

// The word of a kind, with which the id of each problem of it begins; empty for an unknown kind.
const char* kindword(int kind);
// The kind of that number, as a text, or of that word; 0 if there is none.
int findkind(std::string_view numberorword);

class TSXproblem : public CObject {
public:
    TSXproblem(TSXdatabase& owner, int problemkind, int problemsubkind, const char* subject = "");

    int solutioncount() const;                   // 1 or 2; 0 for an unknown kind
    int solutioncommand(int number) const;       // from 1; 0 for a number that the kind doesn't have
    const char* solutionlabel(int number) const; // from 1; empty for a number that the kind doesn't have
    Cost solutioncost(int number) const;         // from 1; safe for a number that the kind doesn't have

    // The same in every run over the same tree, and no other problem's: the kind's word, a colon, and what it
    // is about. A control character, a per-cent sign and a byte that is no UTF-8 stand as % and two hex
    // digits. Looks at the disk for how names are spelled there.
    std::string id() const;

    // Carries out a solution. The result of its operation, 1 where that has none of its own; 0 for a number
    // that the kind doesn't have. The analysis that has to follow is the caller's.
    int solve(int number) const;

    std::int32_t kind;
    std::int32_t subkind;
    Text<2000> name;
    Text<2400> message; // made by the constructor
    TSXdatabase& database;
    std::int32_t fileindex = 0; // position in its file list; set for kind 6 only
    FileState looked;           // of a side file when it was looked at

private:
    void makemessage();
    std::string subject() const;
};
