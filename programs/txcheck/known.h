// Problems that are accepted as they are: a text file with an id in each line; empty lines and those that
// begin with # don't count.
#pragma once

#include <set>
#include <string>

#include "model/database.h"

class KnownProblems {
public:
    // Empty on success, else why the file can't be used.
    std::string read(const std::string& path);

    bool has(const TSXproblem& problem) const;
    int unknownIn(const TSXdatabase& database) const; // how many problems of the database are not accepted
    std::set<std::string> goneFrom(const TSXdatabase& database) const; // ids that no problem has

private:
    std::set<std::string> ids;
};

// The text of such a file with all problems that the database has now.
std::string knownText(const TSXdatabase& database);
