#include "known.h"

#include <sstream>

#include "model/problem.h"
#include "textfile.h"

std::string KnownProblems::read(const std::string& path) {
    std::string content;
    if (std::string failure = readTextFile(path, content); !failure.empty())
        return failure;
    std::istringstream lines(content);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (line.empty() || line[0] == '#')
            continue;
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos || findkind(line.substr(0, colon)) == 0)
            return path + ": Line " + std::to_string(number) + " is not the id of a problem: '" + line + "'";
        ids.insert(line);
    }
    return {};
}

bool KnownProblems::has(const TSXproblem& problem) const {
    return !ids.empty() && ids.count(problem.id()) != 0;
}

int KnownProblems::unknownIn(const TSXdatabase& database) const {
    int count = 0;
    for (int row = 1; row <= database.problemcount; ++row)
        count += has(*database.getproblem(row)) ? 0 : 1;
    return count;
}

std::set<std::string> KnownProblems::goneFrom(const TSXdatabase& database) const {
    std::set<std::string> gone = ids;
    for (int row = 1; row <= database.problemcount && !gone.empty(); ++row)
        gone.erase(database.getproblem(row)->id());
    return gone;
}

std::string knownText(const TSXdatabase& database) {
    std::string text = "# Problems that are accepted as they are, for txcheck --known\n";
    for (int row = 1; row <= database.problemcount; ++row)
        text += database.getproblem(row)->id() + '\n';
    return text;
}
