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

    // Adds the report of a database; the first makes the file. Empty on success, else why it can't be
    // written.
    std::string add(const Session& session, const Options& options);
    // The table of all, where there are several, and the end of the file.
    std::string end();

private:
    struct Line {
        std::string label, text;
        int status;
    };
    void begin();

    std::string path;
    std::vector<std::string> directories;
    std::vector<Line> lines; // of the databases so far
    TextFile file;
};
