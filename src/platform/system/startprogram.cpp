#include "platform/system/startprogram.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/system/posix.h"

namespace {

constexpr int started = 33;                                        // any number above 31
constexpr std::string_view starterVariable = "TXINSPECT_STARTER="; // names the socket to who has started it

std::string directoryOfRunningProgram() {
    std::string path(4096, '\0');
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path.substr(0, path.rfind('/'));
}

std::vector<std::string> directoriesToSearch() {
    std::vector<std::string> directories = {directoryOfRunningProgram(), "."};
    const char* variable = std::getenv("PATH");
    const std::string list = variable != nullptr ? variable : "";
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(':', at), list.size());
        directories.push_back(end > at ? list.substr(at, end - at) : ".");
        at = end + 1;
    }
    return directories;
}

bool isProgram(const std::string& path) {
    struct stat state = {};
    return stat(path.c_str(), &state) == 0 && S_ISREG(state.st_mode) && access(path.c_str(), X_OK) == 0;
}

struct Command {
    std::string path, name;
    std::vector<std::string> surroundings; // the environment
    int socket;                            // that it keeps; -1 for none
};

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

Command commandOf(const std::string& path, const char* name, int socket) {
    Command command{path, name, {}, socket};
    for (char** variable = environ; *variable != nullptr; ++variable)
        command.surroundings.emplace_back(*variable);
    if (socket >= 0)
        command.surroundings.push_back(std::string(starterVariable) + std::to_string(socket));
    return command;
}

// In the child, where only plain system calls are safe: hands the work to a child of its own and ends, so
// that nobody has to wait for the program. Should that not become the program, it writes the error number.
[[noreturn]] void becomeProgram(const Command& command, char* const* arguments, char* const* surroundings,
                                int failurePipe) {
    setsid();
    const pid_t program = fork();
    if (program == 0) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        if (command.socket >= 0)
            fcntl(command.socket, F_SETFD, 0);
        execve(command.path.c_str(), arguments, surroundings);
    }
    const int failure = errno;
    if (program <= 0 && write(failurePipe, &failure, sizeof failure) < 0)
        _exit(1);
    _exit(0);
}

// 0, or the errno value of what went wrong.
int start(Command command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return errno;
    char* const arguments[] = {command.name.data(), nullptr};
    const std::vector<char*> surroundings = pointersTo(command.surroundings);
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(command, arguments, surroundings.data(), ends[1]);
    int failure = child < 0 ? errno : 0;
    close(ends[1]);
    if (child > 0) {
        retryInterrupted([&] { return waitpid(child, nullptr, 0); });
        // The program's own start closes the pipe, which then ends without a byte.
        retryInterrupted([&] { return read(ends[0], &failure, sizeof failure); });
    }
    close(ends[0]);
    return failure;
}

int startWith(const char* program, int socket) {
    for (const std::string& directory : directoriesToSearch()) {
        const std::string path = directory + "/" + program;
        if (!isProgram(path))
            continue;
        const int failure = start(commandOf(path, program, socket));
        if (failure == 0)
            return started;
        SetLastError(failureFrom(failure).number);
        return static_cast<int>(std::min(GetLastError(), ERROR_GEN_FAILURE));
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return static_cast<int>(ERROR_FILE_NOT_FOUND);
}

// Not handed on to what this program starts. Below 0 where it was not started so.
int findStarter() {
    const std::string variable(starterVariable.substr(0, starterVariable.size() - 1));
    const char* number = std::getenv(variable.c_str());
    const int socket = number == nullptr ? -1 : std::atoi(number);
    unsetenv(variable.c_str());
    if (socket >= 0)
        fcntl(socket, F_SETFD, FD_CLOEXEC);
    return socket;
}

} // namespace

int WinExec(const char* program) {
    return startWith(program, -1);
}

int StartedProgram::start(const char* program) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return static_cast<int>(ERROR_GEN_FAILURE);
    socket = ends[0];
    const int result = startWith(program, ends[1]);
    close(ends[1]);
    return result;
}

StartedProgram::~StartedProgram() {
    if (socket >= 0)
        close(socket);
}

bool StartedProgram::hear(StartNews& news, std::string& text) const {
    char bytes[4096];
    const ssize_t length = retryInterrupted([&] { return recv(socket, bytes, sizeof bytes, 0); });
    if (length <= 0)
        return false;
    news = static_cast<StartNews>(bytes[0]);
    text.assign(bytes + 1, static_cast<std::size_t>(length) - 1);
    return true;
}

void StartedProgram::stop() const {
    shutdown(socket, SHUT_WR);
}

bool tellStarter(StartNews news, std::string_view text) {
    static const int starter = findStarter();
    const std::string message = static_cast<char>(news) + std::string(text);
    char byte = '\0';
    return starter < 0 || (recv(starter, &byte, 1, MSG_DONTWAIT) != 0 &&
                           send(starter, message.data(), message.size(), MSG_NOSIGNAL) >= 0);
}
