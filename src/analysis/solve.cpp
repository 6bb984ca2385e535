// From the solution of a problem to the operation of the database that carries it out, and what keeps it from
// being carried out.
#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/system/messagebox.h"
#include "reporting/report.h"

namespace {

struct Operation {
    int command;
    int (*apply)(TSXdatabase&, const TSXproblem&);
};

// For the operations that have no result of their own.
template <class Repair> int done(Repair repair) {
    repair();
    return 1;
}

constexpr Operation operations[] = {
    {removeemptyfilescommand,
     [](TSXdatabase& d, const TSXproblem& p) { return d.removeemptyfiles(p.subkind); }},
    {removeduplicatescommand,
     [](TSXdatabase& d, const TSXproblem& p) { return done([&] { d.removeduplicates(p.subkind); }); }},
    {renameduplicatescommand,
     [](TSXdatabase& d, const TSXproblem& p) { return done([&] { d.renameduplicates(p.subkind); }); }},
    {createkeyscommand, [](TSXdatabase& d, const TSXproblem&) { return done([&] { d.createkeys(); }); }},
    {removeexperimentkeyscommand,
     [](TSXdatabase& d, const TSXproblem&) { return done([&] { d.removeexperimentkeys(); }); }},
    {adddatabaseentriescommand,
     [](TSXdatabase& d, const TSXproblem&) { return done([&] { d.adddatabaseentries(); }); }},
    {createdirectorycommand, [](TSXdatabase& d, const TSXproblem& p) { return d.createdirectory(p.name); }},
    {deletecorruptfilecommand,
     [](TSXdatabase& d, const TSXproblem& p) { return d.deletecorruptfile(p.subkind, p.fileindex); }},
    {deletefilecommand, [](TSXdatabase& d, const TSXproblem& p) { return d.deletefile(p.name); }},
};

bool changeskeys(int command) {
    return command >= removeduplicatescommand && command <= adddatabaseentriescommand;
}

// The first few things that are unread, a line each.
std::string unreadlines(const TSXdatabase& database, Unread::Weight weight) {
    constexpr int shown = 5;
    std::string lines;
    int count = 0;
    for (const Unread& thing : database.unread)
        if (thing.weight == weight && ++count <= shown)
            lines += "\n" + thing.name + ": " + thing.reason;
    if (count > shown)
        lines += "\nand " + std::to_string(count - shown) + " more";
    return lines;
}

// The path of the file that a solution would delete, though it could not be read; empty where there is none.
std::string unreadvictim(const TSXproblem& problem, int command) {
    if (command == deletefilecommand && problem.database.isunread(problem.name.view()))
        return problem.name.c_str();
    if (command != deletecorruptfilecommand || problem.subkind < 0 ||
        problem.subkind > problem.database.lastlist)
        return {};
    const auto& files = problem.database.lists[static_cast<std::size_t>(problem.subkind)]->files;
    const auto position = static_cast<std::size_t>(problem.fileindex);
    return position >= 1 && position < files.size() && files[position]->unread ? files[position]->path.c_str()
                                                                               : "";
}

// What could not be read is neither empty nor damaged, and the keys in it may be anybody's. Empty where
// nothing is in the way.
std::string obstacle(const TSXproblem& problem, int command) {
    if (changeskeys(command) && !problem.database.picturecomplete())
        return "Keys can't be repaired while a part of the database is unread:" +
               unreadlines(problem.database, Unread::whole) +
               "\nPut that right, or restore it from a copy, and start again. Nothing was changed";
    if (const std::string path = unreadvictim(problem, command); !path.empty())
        return "The file '" + problem.database.diskname(path) +
               "' could not be read, so it can't be known whether it is damaged. Put that right and start "
               "again, or delete "
               "it yourself if it is not needed. Nothing was changed";
    return {};
}

} // namespace

int TSXproblem::solve(int number) const {
    const int command = solutioncommand(number);
    if (const std::string text = obstacle(*this, command); !text.empty()) {
        report(text.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
        return 0;
    }
    for (const Operation& operation : operations)
        if (operation.command == command)
            return operation.apply(database, *this);
    return 0;
}
