// What a run came to, in sentences.
#pragma once

#include <string>
#include <vector>

#include "row.h"
#include "session.h"

struct Sentence {
    std::string text;
    Mood mood = Mood::plain;
};
std::vector<Sentence> outcome(const Session& session, const Options& options);

// The same in a few words: "3 problems, 1 file not readable, 2 changes".
std::string inShort(const Session& session);
// The table of several databases.
Section tableOf(const std::vector<Line>& lines);
