// How a test asks what became of a call, in its own process or in a second one.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include "platform/system/errors.h"

inline std::uint32_t errorOf(bool succeeded) {
    return succeeded ? 0 : GetLastError();
}

// Runs the work in a child and returns what it returned, from 0 to 255; -1 if it did not come to its end.
template <class Work> int inChild(Work work) {
    const pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
