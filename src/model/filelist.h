// The data files of one file class in the order in which the directory search gives them. Making a list scans
// the class's directory and reads every file there.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/system/cobject.h"
#include "platform/system/filestate.h"
#include "platform/system/letters.h"

class TSXdatabase;
class TSXdatafile;
class TSXfinder;
struct FileClass;

constexpr int maxfiles = 3000;

class TSXfilelist : public CObject {
public:
    TSXfilelist(TSXdatabase& owner, int fileclass);
    ~TSXfilelist() override;

    // Adds a problem of kind 6 for each invalid file.
    void reportinvalid(int fileclass);
    // Adds one problem of kind 1 if any valid file has no record.
    void reportempty(int fileclass);
    // Takes the file at that position, from 1 to count, out of the list; later ones move one place down, and
    // the problems of this class follow.
    void removeat(int position);
    // Reads what was not read for the sake of files that have left the list, and puts it where a load would.
    void takewaiting();
    // Makes a new empty .DBS file with the lowest number DBSF001, DBSF002 … that neither the list nor the
    // disk knows. Its position, or -1 if the list is full or the disk does not tell.
    int newfile();
    // What another program has done since the load to the files that were read and the names that were
    // listed, a text for each.
    std::vector<std::string> changedsince() const;
    void notemade(const std::string& name); // a file that was made is no other program's
    // Searches the directory anew and reads what has changed since it was read, or could not be read. Other
    // files keep what they have in memory, those that are not on the disk yet their place at the end.
    void reread();

    TSXdatabase& database;
    const int classid;
    const FileClass& format;
    std::int32_t count = 0;                          // at most maxfiles
    std::vector<std::unique_ptr<TSXdatafile>> files; // from 1 to count; slot 0 holds nothing

    bool missing = false;  // the class's directory was not there when it was scanned
    bool scanning = false; // the files that are made just now are those that a search has found

private:
    void search();
    void take(const TSXfinder& match);
    std::unique_ptr<TSXdatafile> unchanged(const std::string& name);
    void addfile(std::unique_ptr<TSXdatafile> file, std::size_t position);
    bool issecondname(const TSXfinder& match);
    void notepassedover(const TSXfinder& search);
    std::string pathof(const std::string& name) const;
    std::size_t positionof(const std::string& name) const;

    std::string pattern;                             // of its files
    std::set<std::string, BeforeIgnoringCase> names; // of the files
    int lowestnumber = 1;                            // files of all numbers below are in the list
    std::set<std::string> listing;                   // names in the directory that matched at the load
    std::map<FileIdentity, std::string> listed;      // the name under which each file is read
    std::string unknown; // a name of which the disk did not tell the file; empty: there is none
    std::multimap<std::string, std::string> passedover;          // by the name that is read in their place
    std::set<std::string> waiting;                               // passed over for what has left the list
    std::map<std::string, std::unique_ptr<TSXdatafile>> earlier; // by name, while the list is read anew
};
