// How far the reading and the analysis of a database are, for a person who waits.
#pragma once

#include <functional>
#include <string>

class TSXdatabase;
class TSXdatafile;

class Progress {
public:
    using Show = std::function<void(int percent, const std::string& text)>;

    // As long as it stands, show is called now and then with how far the load is, from 0 to 100 for the
    // reading and from 0 to 100 for the analysis. The database's directory is open.
    Progress(TSXdatabase& database, Show show);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

private:
    void read(const TSXdatafile& file);

    TSXdatabase& database;
    const Show show;
    long total = 0; // data files that are to be read
    long files = 0;
    long records = 0;
};
