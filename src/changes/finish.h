// What an interrupted run has left half done is finished by the next run, before anything is loaded; or told,
// where it can't be.
#pragma once

#include <string>
#include <vector>

#include "platform/system/tree.h"

enum class Wish {
    finish,
    look,   // changes nothing
    forget, // takes the database as it stands
};

struct Finished {
    enum Outcome {
        nothing, // was waiting
        done,    // the change was finished, had not begun, or is forgotten
        left,    // it waits: the database may be judged, and not changed
        busy,    // it is at work: the database is left alone
    };

    Outcome outcome = nothing;
    bool changed = false;           // the disk
    std::vector<std::string> texts; // for the person
};

Finished finishinterrupted(Tree& tree, Wish wish);
