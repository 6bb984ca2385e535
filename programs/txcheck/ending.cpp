#include "ending.h"

#include <csignal>
#include <initializer_list>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t asked = 0;
volatile std::sig_atomic_t statusAtOnce = 0;

void note(int) {
    asked = 1;
}

void leave(int) {
    constexpr char text[] = "\ntxcheck: You have ended it\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, sizeof text - 1);
    _exit(statusAtOnce | statusEnded);
}

void handleWith(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM})
        sigaction(signal, &action, nullptr);
}

} // namespace

void endAtOnce(int status) {
    statusAtOnce = status;
    handleWith(leave);
}

void endBetweenSteps() {
    handleWith(note);
}

bool isAskedToEnd() {
    return asked != 0;
}
