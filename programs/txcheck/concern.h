// What a problem is about, one by one, and what its solutions do: what the line of the problem list leaves
// out.
#pragma once

#include <functional>
#include <string>

#include "model/database.h"
#include "model/keyentry.h"

class TSXdatafile;
class TSXproblem;

// Names the keys that a problem is about, each with its records of those types that are concerned.
struct KeyConcern {
    const TSXkeyentry* key;
    int type; // the one type that counts; -1 for all
};
void forEachKey(const TSXproblem& problem, const std::function<void(const KeyConcern&)>& take);

// Names the files and directories that a problem is about, relative to the database's directory.
void forEachFile(const TSXproblem& problem, const std::function<void(const std::string&)>& take);

std::string placeOf(const TSXdatafile& file); // its directory and its name without an ending

const char* kindText(int kind);        // what the kind means for the data
const char* solutionText(int command); // what the solution does to the data
