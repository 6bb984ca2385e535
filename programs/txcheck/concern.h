// What a problem is about, one by one, which the line of the problem list leaves out.
#pragma once

#include <functional>
#include <string>

#include "model/database.h"
#include "model/keyentry.h"

class TSXdatafile;
class TSXproblem;

// Gives the keys that a problem is about, each with its records of a type that is concerned.
using KeyVisit = std::function<void(const TSXkeyentry&, std::span<const Occurrence>)>;
void forEachKey(const TSXproblem& problem, const KeyVisit& take);

// Names the files and directories that a problem is about, relative to the database's directory.
void forEachFile(const TSXproblem& problem, const std::function<void(const std::string&)>& take);

// What a problem, or a thing that could not be read, means for the data.
const char* meaningOf(const TSXproblem& problem);
const char* meaningOf(const Unread& thing);

// Of what could not be read, the same in every run over the same tree.
std::string idOf(const Unread& thing);

std::string shortPathOf(const TSXdatafile& file); // its directory and its name without an ending
