// What a run came to, in sentences, and how the problems are counted by kind.
#pragma once

#include <string>
#include <vector>

#include "options.h"
#include "session.h"

std::string counted(int count, int kind);                       // "1 missing directory"
std::string summary(const Session& session, const char* state); // "25 problems left: 9 corrupted files, …"

struct Sentence {
    enum Mood { plain, good, bad };
    std::string text;
    Mood mood = plain;
};
std::vector<Sentence> outcome(const Session& session, const Options& options);
