// What is accepted as it is: a text file with a line for each problem and each thing that could not be read.
// It has the id, the number of the records or files concerned, and a digest of each of them, since an id
// alone would accept whatever comes later under it. Empty lines and those that begin with # don't count;
// those behind a line with @ and a directory are of that database alone.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "model/database.h"

class Known {
public:
    struct Standing {
        std::string id;
        int known = 0; // of what the problem is about
        int fresh = 1; // of it what goes beyond that; without an entry not counted
    };

    // What the file has of a database. Empty on success, else why the file can't be used.
    std::string read(const std::string& path, const std::string& directory);
    // An analysis has made the problems anew.
    void forget() { rows.clear(); }

    const Standing& standing(const TSXdatabase& database, int row) const;
    bool has(const TSXdatabase& database, int row) const { return standing(database, row).fresh == 0; }
    bool has(const Unread& thing) const;
    int unknownIn(const TSXdatabase& database) const; // how many problems are not accepted as a whole
    int unreadIn(const TSXdatabase& database) const;  // how many things that could not be read
    // A sentence for each entry of which something is there no more.
    std::vector<std::string> goneFrom(const TSXdatabase& database) const;

private:
    using Digests = std::vector<std::uint64_t>; // ascending

    bool readLine(const std::string& line);

    std::map<std::string, Digests> entries; // by id
    mutable std::vector<std::optional<Standing>> rows;
};

// The lines of such a file for all that the database has now.
std::string knownLines(const TSXdatabase& database);
