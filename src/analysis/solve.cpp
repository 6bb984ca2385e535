// Carries the solution of a problem out, where nothing is in the way.
#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/system/messagebox.h"
#include "reporting/notify.h"

namespace {

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

// What could not be read is neither empty nor damaged, and the keys in it may be anybody's. Empty where
// nothing is in the way.
std::string obstacle(const TSXproblem& problem) {
    if (problem.facts().concernskey != nullptr && !problem.database.picturecomplete())
        return "Keys can't be repaired while a part of the database is unread:" +
               unreadlines(problem.database, Unread::whole) +
               "\nPut that right, or restore it from a copy, and " + inspectAgain + ". Nothing was changed";
    if (problem.isunread())
        return "The file '" + problem.facts().subject(problem) +
               "' could not be read, so it can't be known whether it is damaged. Put that right and " +
               inspectAgain + ", or delete it yourself if it is not needed. Nothing was changed";
    return {};
}

} // namespace

int TSXproblem::solve(int number) const {
    const bool leftlist = kind == corruptdatafile && fileindex == 0;
    if (solutioncommand(number) == 0 || leftlist)
        return 0;
    if (const std::string text = obstacle(*this); !text.empty()) {
        notify(text.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
        return 0;
    }
    if (facts().concernskey == nullptr)
        return database.solvetogether({this})[0] != 0 ? 1 : 0;
    auto& left = database.leftout;
    left.clear();
    solution(number).changekeys(database, *this);
    left.erase(std::unique(left.begin(), left.end()), left.end());
    notifyall(left, "All else was done.");
    return left.empty() ? 1 : 0;
}
