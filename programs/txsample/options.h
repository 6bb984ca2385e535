// The command line of txsample.
#pragma once

#include "sample.h"

enum ExitStatus : int {
    sampleMade = 0,
    couldNotWork = 8, // the directory can't be made, used or written
    wrongUsage = 16,
};

// Fills the options. Returns true, or false with the status to leave with: help and version have then been
// printed to standard output, what is wrong to standard error.
bool parseOptions(int argc, char** argv, SampleOptions& options, int& status);
