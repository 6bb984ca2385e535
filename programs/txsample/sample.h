// Makes a sample database: a whole tree of every kind of file, sound or with chosen damages, of any size up
// to the limits. Equal options give equal bytes on every machine. One file's records at most are held in
// memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "content.h"

struct SampleOptions {
    std::string directory; // made if missing; has to be empty
    int files = 3;         // .DBS files
    int entries = 40;      // in each .DBS file
    int types = 2;         // experiment types in each class
    int experiments = 3;   // files of each experiment class
    int records = 40;      // in each experiment file; a gel2d file always has one
    int fields = 3;        // of an entry
    std::uint32_t seed = 1;
    KeyStyle keys = KeyStyle::shuffled;
    std::vector<std::string> damages; // names of the table in damage.h
    std::string home;                 // with name: where to write the database settings file, made if missing
    std::string name;
};

// A number of the options with its range.
struct SampleNumber {
    const char* name;
    const char* help;
    int SampleOptions::*value;
    int least;
    int most;
};

extern const std::vector<SampleNumber> samplenumbers;

struct SampleResult {
    int datafiles = 0;
    int records = 0; // in all data files
    int sidefiles = 0;
    std::vector<std::string> damages; // as made: each once, in the order of the table
};

// Why the options can't be used, with the option that is to blame; empty when they can.
std::string unusable(const SampleOptions& options);

// With options that can be used. Where they ask for more than can be sound, less is made: no key is used
// twice in an experiment type, and with damages the files and types stay below the limits of a database, so
// that what is damaged finds room. At the first failure a std::runtime_error tells which file and what was
// tried, and the tree is incomplete.
SampleResult makeSample(const SampleOptions& options);
