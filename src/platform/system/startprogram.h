// Starting another program, and what it tells of its own start.
#pragma once

#include <string>
#include <string_view>

// Starts a program by its bare name, without arguments: looked for under exactly that name in the directory
// of the running program, then in the current directory, then in those of PATH. It is not waited for, lives
// on when this process ends, and has no standard input. Above 31 on success, else the error number: 2 when
// there is no such program.
int WinExec(const char* program);

// How the start of a program goes.
enum class StartNews : char {
    progress, // how far it is
    stands,   // its window is there
    refused,  // why it will not be, which it has shown to the person
    failed,   // the same, which nobody has seen
};

// A program that was started and tells how its own start goes.
class StartedProgram {
public:
    StartedProgram() = default;
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;
    ~StartedProgram(); // it lives on

    int start(const char* program); // once; as WinExec
    // Waits for what it tells next. False when it has ended.
    bool hear(StartNews& news, std::string& text) const;
    void stop() const;                        // tells it that nobody waits for it any more
    int descriptor() const { return socket; } // readable when hear has no need to wait

private:
    int socket = -1;
};

// In that program: tells something to who has started it, which is nobody where it was not started so. False
// when that one doesn't wait any more.
bool tellStarter(StartNews news, std::string_view text = {});
