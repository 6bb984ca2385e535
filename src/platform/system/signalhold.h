// Lets the signals that ask the program to end wait while a change of the disk is under way.
#pragma once

#include <csignal>

// Holds back INT, TERM and HUP from its construction to its end; one that came meanwhile then takes its usual
// effect. Holds may be nested.
class SignalHold {
public:
    SignalHold();
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;
    ~SignalHold();

private:
    static constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction usual_[3] = {};
};
