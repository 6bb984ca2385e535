// One line of the problem list: what is wrong, in words, and the solutions that are offered. One problem
// stands for all keys or files of its kind in one type or class.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/system/cobject.h"
#include "platform/system/filestate.h"

class TSXdatabase;
class TSXdatafile;
class TSXkeyentry;
class TSXproblem;

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

constexpr int maxsolutions = 2;

// All that there is to know of a kind of problem.
struct KindOfProblem {
    struct Solution {
        int command; // 0: the kind has no such solution
        const char* label;
        Cost cost;
        const char* effect; // on the data, after "it"
        const char* price;  // a sentence: what is lost, and whether it can be had back
        // On keys; none where the solution deletes or makes.
        void (*changekeys)(TSXdatabase& database, const TSXproblem& problem);
    };

    std::int32_t number; // 0: no kind
    const char* word;    // with which the id of each problem of the kind begins
    const char* one;     // of such problems, in a count
    const char* many;
    const char* meaning;                               // for the data
    std::string (*message)(const TSXproblem& problem); // empty: it has none of its own
    std::string (*subject)(const TSXproblem& problem); // what it is about, in the id
    // Whether it is about the records with that key in that type; none where it is about no keys.
    bool (*concernskey)(const TSXproblem& problem, const TSXkeyentry& key, int type);
    // Whether it is about the data file there in the list of its class; none where it is about no data files.
    bool (*concernsfile)(const TSXproblem& problem, const TSXdatafile& file, int position);
    Solution solutions[maxsolutions];
};
// The rows of all kinds, from number 1.
std::span<const KindOfProblem> kindsofproblem();
// The row of a kind; that of an unknown one has number 0, empty texts and no operations.
const KindOfProblem& kindofproblem(int number);
// The kind of that number, as a text, or of that word; 0 if there is none.
int findkind(std::string_view numberorword);

// With what an id can't hold, or would not come back from a terminal, as % and two hex digits for each byte.
std::string encodedforid(std::string_view bytes);

class TSXproblem : public CObject {
public:
    TSXproblem(TSXdatabase& owner, int problemkind, int problemsubkind, std::string_view subject = "");

    const KindOfProblem& facts() const { return kindofproblem(kind); }
    int solutioncount() const; // 1 or 2; 0 for an unknown kind
    // From 1; one without a command for a number that the kind doesn't have.
    const KindOfProblem::Solution& solution(int number) const;
    int solutioncommand(int number) const { return solution(number).command; }
    const char* solutionlabel(int number) const { return solution(number).label; }

    // The same in every run over the same tree, and no other problem's: the kind's word, a colon, and what it
    // is about, encoded. Looks at the disk, the first time, for how names are spelled there.
    const std::string& id() const;
    // Whether the file that it is about could not be read: then nobody knows whether it is damaged.
    bool isunread() const;

    // Carries out a solution. 1 where it was done; else 0, also for a number that the kind doesn't have. The
    // analysis that has to follow is the caller's.
    int solve(int number) const;

    std::int32_t kind;
    std::int32_t subkind;
    std::string name;
    std::string message; // made by the constructor
    TSXdatabase& database;
    std::int32_t fileindex = 0; // position in its file list; set for kind 6 only
    FileStamp looked;           // of a side file when it was looked at

private:
    mutable std::string knownid; // empty until it is asked for
};
