// The tree that is being made: writes its files with all their chunks and counts them. A first failure ends
// the work, as a std::runtime_error.
#pragma once

#include <string>
#include <system_error>
#include <vector>

#include "content.h"
#include "model/datafile.h"
#include "sample.h"

class TSXbinfile;

constexpr const char* compheader = "TX-COMP-v1.0"; // of a .CMP file, without a length before it

struct SampleRecord {
    std::string key;  // as it is to be stored, a NUL byte included
    std::string type; // written where the class's records name their type
    int capacity = keycapacity;
};

struct DataFile {
    int fileclass = 0;
    std::string name = {};                  // without extension
    std::string type = {};                  // for the type chunk
    std::vector<SampleRecord> records = {}; // none: no record chunk, unless a count is stated
    int statedcount = -1;                   // written instead of the number of records
    const char* header = nullptr;           // instead of the class's
    const char* extension = nullptr;        // instead of the class's
    bool brokentag = false;                 // what stands after the last chunk is no chunk
};

struct SideFile {
    std::string path; // below the database directory
    std::string header;
    int chunks = 3;
    bool brokentag = false;
};

// Throws what could not be done with the path, where there is an error.
void failon(const std::error_code& error, const char* tried, const std::string& path);

class SampleTree {
public:
    // The root exists and is empty.
    SampleTree(std::string root, const SampleOptions& options);

    void makedirectories();
    // Returns the offset of the last record's key field.
    int write(const DataFile& file);
    void write(const SideFile& file);
    // Writes the file and cuts it inside the text of its last key.
    void writecut(const DataFile& file);
    void writesettings();
    void rename(const std::string& from, const std::string& to);
    void remove(const std::string& directory);

    const SampleOptions options;
    const Content content;
    SampleResult result;

private:
    std::string pathof(const std::string& name) const { return root_ + "/" + name; }
    void writefieldnames(TSXbinfile& file) const;
    int writerecords(TSXbinfile& file, const DataFile& data);
    void writerecord(TSXbinfile& file, const DataFile& data, const SampleRecord& record);

    std::string root_;
};
