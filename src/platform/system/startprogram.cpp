#include "platform/system/startprogram.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system/posix.h"

namespace {

constexpr int started = 33;                                  // any number above 31
constexpr const char* starterVariable = "TXINSPECT_STARTER"; // names the socket to who has started it

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

// 0, or the errno value of what went wrong. The program keeps the socket, if there is one.
int start(const std::string& path, std::string name, int socket) {
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    char* const arguments[] = {name.data(), nullptr};
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (socket >= 0) {
        posix_spawn_file_actions_adddup2(&actions, socket, socket); // which keeps it open
        setenv(starterVariable, std::to_string(socket).c_str(), 1);
    }
    const int failure = posix_spawn(nullptr, path.c_str(), &actions, &attributes, arguments, environ);
    unsetenv(starterVariable);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return failure;
}

int startWith(const char* program, int socket) {
    for (const std::string& directory : directoriesToSearch()) {
        const std::string path = directory + "/" + program;
        if (!isProgram(path))
            continue;
        const int failure = start(path, program, socket);
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
    const char* number = std::getenv(starterVariable);
    const int socket = number == nullptr ? -1 : std::atoi(number);
    unsetenv(starterVariable);
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
