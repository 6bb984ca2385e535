// A report as an HTML page, written as it is made, of one database or several. It needs nothing beside itself
// and runs nothing.
#pragma once

#include <string>
#include <vector>

#include "contents.h"
#include "textfile.h"

class PageForm {
public:
    // None of the databases may hold the file.
    PageForm(std::string name, std::vector<std::string> databases)
        : path(std::move(name)), directories(std::move(databases)) {}

    // Adds the report of the database of that number; the first makes the file. Empty on success, else why it
    // can't be written.
    std::string add(const Session& session, const Options& options, std::size_t number);
    // The table of all, where there are several, and the end of the file.
    std::string end(const std::vector<Line>& lines);

private:
    void begin();

    std::string path;
    std::vector<std::string> directories;
    bool begun = false;
    TextFile file;
};
