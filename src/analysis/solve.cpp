// Carries the solution of a problem out, where nothing is in the way.
#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"
#include "model/problem.h"
#include "platform/system/messagebox.h"
#include "reporting/report.h"

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

// The path of the file that a solution would delete, though it could not be read; empty where there is none.
std::string unreadvictim(const TSXproblem& problem) {
    if (problem.kind == corruptsidefile && problem.database.isunread(problem.name.view()))
        return problem.name.c_str();
    if (problem.kind != corruptdatafile || problem.subkind < 0 || problem.subkind > problem.database.lastlist)
        return {};
    const auto& files = problem.database.lists[static_cast<std::size_t>(problem.subkind)]->files;
    const auto position = static_cast<std::size_t>(problem.fileindex);
    return position >= 1 && position < files.size() && files[position]->unread ? files[position]->path.c_str()
                                                                               : "";
}

// What could not be read is neither empty nor damaged, and the keys in it may be anybody's. Empty where
// nothing is in the way.
std::string obstacle(const TSXproblem& problem) {
    if (problem.facts().concernskey != nullptr && !problem.database.picturecomplete())
        return "Keys can't be repaired while a part of the database is unread:" +
               unreadlines(problem.database, Unread::whole) +
               "\nPut that right, or restore it from a copy, and start again. Nothing was changed";
    if (const std::string path = unreadvictim(problem); !path.empty())
        return "The file '" + problem.database.diskname(path) +
               "' could not be read, so it can't be known whether it is damaged. Put that right and start "
               "again, or delete "
               "it yourself if it is not needed. Nothing was changed";
    return {};
}

} // namespace

int TSXproblem::solve(int number) const {
    const auto carryout = solution(number).carryout;
    if (carryout == nullptr)
        return 0;
    if (const std::string text = obstacle(*this); !text.empty()) {
        report(text.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
        return 0;
    }
    database.leftout.clear();
    const int result = carryout(database, *this);
    auto& left = database.leftout;
    left.erase(std::unique(left.begin(), left.end()), left.end());
    reportall(left, "All else was done.");
    return left.empty() ? result : 0;
}
