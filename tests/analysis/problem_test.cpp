#include "model/problem.h"

#include "databasetest.h"

namespace {

class Problem : public DatabaseTest {};

} // namespace

TEST_F(Problem, EveryKindHasItsTextAndItsSolutions) {
    const std::string longType(60, 't'), longName(1900, 'n');
    put(1, "A", dataFile(1, longType, {"k"}));
    load();
    const std::string empty = "There are empty experiment file(s)     (Experiment class '",
                      remove = "7001 Remove all empty files!", corrupt = "7008 Delete this corrupted file!";
    const struct {
        int kind, subkind;
        std::string name, message, solutions; // a solution that loses something ends in "!"
    } rows[] = {
        {1, 0, "", "There are empty database file(s)", remove},
        {1, 1, "", empty + "gel')", remove},
        {1, 2, "", empty + "character')", remove},
        {1, 3, "", empty + "seq')", remove},
        {1, 4, "", empty + "pair')", remove},
        {1, 5, "", empty + "gel2d')", remove},
        {2, 0, "", "Some database entries have identical keys",
         "7002 Remove all duplicate keys!7003 Rename all duplicate keys"},
        {2, 1, "", "Some experiment entries have identical keys     (Experiment type '" + longType + "')",
         "7002 Remove all duplicate keys!7003 Rename all duplicate keys"},
        {3, 0, "", "Some database entries have no keys", "7004 Create keys"},
        {4, 0, "", "Some experiment keys have no database entries",
         "7005 Remove these experiment keys!7006 Add database entries for these keys"},
        {5, 1, "a\\b%s", "Missing database directory 'a\\b%s'", "7007 Create directory"},
        {6, 0, "n", "The database file 'n' is corrupted", corrupt},
        {6, 1, "n", "The gel file 'n' is corrupted", corrupt},
        {6, 2, "n", "The character file 'n' is corrupted", corrupt},
        {6, 3, "n", "The sequence file 'n' is corrupted", corrupt},
        {6, 4, "n", "The similarity file 'n' is corrupted", corrupt},
        {6, 5, "n", "Unknown error", corrupt},
        {7, 0, longName, "The file '" + longName + "' is corrupted", "7009 Delete this corrupted file!"},
        {0, 0, "n", "Unknown error", ""},
        {8, 0, "n", "Unknown error", ""},
    };
    for (const auto& row : rows) {
        const TSXproblem problem(*database, row.kind, row.subkind, row.name.c_str());
        EXPECT_EQ(problem.message.c_str(), row.message);
        EXPECT_EQ(problem.name.c_str(), row.name);
        std::string solutions;
        for (int n = 1; n <= problem.solutioncount(); ++n)
            solutions += std::to_string(problem.solutioncommand(n)) + " " + problem.solutionlabel(n) +
                         (problem.solutioncost(n) != Cost::safe ? "!" : "");
        EXPECT_EQ(solutions, row.solutions);
        for (const int n : {-1, 0, problem.solutioncount() + 1, 3})
            EXPECT_EQ(problem.solutioncommand(n) + problem.solve(n) + *problem.solutionlabel(n), 0);
    }
}
