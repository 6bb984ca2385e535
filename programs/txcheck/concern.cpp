#include "concern.h"

#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/problem.h"

namespace {

bool isConcerned(const TSXproblem& problem, const TSXkeyentry& entry) {
    switch (problem.kind) {
    case duplicatekeys:
        return !entry.key.empty() && entry.occurrences(problem.subkind) > 1;
    case blankkeys:
        return entry.key.empty() && entry.occurrences(0) > 0;
    case orphankeys:
        return entry.isorphan();
    default:
        return false;
    }
}

struct Explanation {
    int number; // of a kind or a solution
    const char* text;
};

constexpr Explanation kinds[] = {
    {emptyfiles, "Data files of this class are sound and hold no record. They do no harm."},
    {duplicatekeys, "Several records of one type have the same key, so that what belongs to which of them "
                    "can't be told."},
    {blankkeys, "Several database entries have no key, so that no experiment can belong to them."},
    {orphankeys, "Experiments have keys of which there is no database entry: their results belong to "
                 "nothing."},
    {missingdirectory, "A directory that a database has isn't there. Where it held files, look whether it "
                       "was moved, or whether a share isn't mounted, before it is made anew."},
    {corruptdatafile, "A data file has no valid header, no usable number of records or a chunk that makes "
                      "no sense. Nothing of it counts; a copy from a backup may be better."},
    {corruptsidefile, "A side file, which describes an experiment type or a comparison, has no valid "
                      "header or a chunk that makes no sense."},
};

constexpr Explanation solutions[] = {
    {removeemptyfilescommand, "deletes these files"},
    {removeduplicatescommand, "keeps the key in its first record and takes it from all later ones, whose "
                              "data stay without a key"},
    {renameduplicatescommand, "keeps the key in its first record; each later one gets it with a number "
                              "behind it, /#2, /#3 …, a long key cut for that"},
    {createkeyscommand, "gives each of these entries a key of its own, dbkey/#2, dbkey/#3 …"},
    {removeexperimentkeyscommand, "takes the key from all these records, whose results stay without a key"},
    {adddatabaseentriescommand, "makes an entry for each of these keys, in new files in DBASE"},
    {createdirectorycommand, "makes the directory, empty"},
    {deletecorruptfilecommand, "deletes the file"},
    {deletefilecommand, "deletes the file"},
};

template <class Table> const char* textOf(const Table& table, int number) {
    for (const Explanation& row : table)
        if (row.number == number)
            return row.text;
    return "";
}

} // namespace

void forEachKey(const TSXproblem& problem, const std::function<void(const KeyConcern&)>& take) {
    const TSXdatabase& database = problem.database;
    const int type = problem.kind == duplicatekeys ? problem.subkind : (problem.kind == blankkeys ? 0 : -1);
    for (std::int32_t i = 1; i <= database.keytotal; ++i)
        if (const TSXkeyentry* entry = database.keyarray[static_cast<std::size_t>(i)];
            isConcerned(problem, *entry))
            take({entry, type});
}

void forEachFile(const TSXproblem& problem, const std::function<void(const std::string&)>& take) {
    const TSXdatabase& database = problem.database;
    if (problem.kind == missingdirectory || problem.kind == corruptsidefile)
        take(database.diskname(problem.name.view()));
    if (problem.kind != emptyfiles && problem.kind != corruptdatafile)
        return;
    const auto& files = database.lists[static_cast<std::size_t>(problem.subkind)]->files;
    for (std::size_t i = 1; i < files.size(); ++i)
        if (problem.kind == emptyfiles ? files[i]->isempty() : static_cast<int>(i) == problem.fileindex)
            take(database.diskname(files[i]->path.view()));
}

std::string placeOf(const TSXdatafile& file) {
    return std::string(fileclasses[file.classid].directory) + '/' + file.name.c_str();
}

const char* kindText(int kind) {
    return textOf(kinds, kind);
}

const char* solutionText(int command) {
    return textOf(solutions, command);
}
