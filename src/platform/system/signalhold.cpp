#include "platform/system/signalhold.h"

#include <iterator>
#include <utility>

namespace {

volatile std::sig_atomic_t arrived[NSIG] = {};
int depth = 0;

void remember(int signal) {
    arrived[signal] = 1;
}

} // namespace

// Handlers and not a mask: a signal to the process reaches any of its threads, and a window system may have
// made some.
SignalHold::SignalHold() {
    if (depth++ > 0)
        return;
    struct sigaction waiting = {};
    waiting.sa_handler = remember;
    waiting.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < std::size(signals); ++i)
        sigaction(signals[i], &waiting, &usual_[i]);
}

SignalHold::~SignalHold() {
    if (--depth > 0)
        return;
    for (std::size_t i = 0; i < std::size(signals); ++i)
        sigaction(signals[i], &usual_[i], nullptr);
    for (const int signal : signals)
        if (std::exchange(arrived[signal], 0) != 0)
            std::raise(signal);
}
