// From the solution of a problem to the operation of the database that carries it out.
#include "model/database.h"
#include "model/problem.h"

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
     [](TSXdatabase& d, const TSXproblem& p) { return done([&] { d.removeemptyfiles(p.subkind); }); }},
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

} // namespace

int TSXproblem::solve(int number) const {
    const int command = solutioncommand(number);
    for (const Operation& operation : operations)
        if (operation.command == command)
            return operation.apply(database, *this);
    return 0;
}
