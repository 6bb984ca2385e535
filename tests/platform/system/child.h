// A second process for a test: what it does, and what it says of it.
#pragma once

#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

constexpr int notPossibleHere = 77; // the status of a child that this machine does not let do its work

// Runs the work in a child and returns what it returned, from 0 to 255; -1 if it did not come to its end.
template <class Work> int inChild(Work work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}
