#include "platform/system/startprogram.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/system/posix.h"

namespace {

constexpr int started = 33; // any number above 31

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

// In the child, where only plain system calls are safe: hands the work to a child of its own and ends, so
// that nobody has to wait for the program. Should that not become the program, it writes the error number.
[[noreturn]] void becomeProgram(const char* path, char* const* arguments, int failurePipe) {
    setsid();
    const pid_t program = fork();
    if (program == 0) {
        const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        execv(path, arguments);
    }
    const int failure = errno;
    if (program <= 0 && write(failurePipe, &failure, sizeof failure) < 0)
        _exit(1);
    _exit(0);
}

// 0, or the errno value of what went wrong.
int start(const std::string& path, std::string name) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return errno;
    char* const arguments[] = {name.data(), nullptr};
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(path.c_str(), arguments, ends[1]);
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

} // namespace

int WinExec(const char* program) {
    for (const std::string& directory : directoriesToSearch()) {
        const std::string path = directory + "/" + program;
        if (!isProgram(path))
            continue;
        const int failure = start(path, program);
        if (failure == 0)
            return started;
        SetLastError(failureFrom(failure).number);
        return static_cast<int>(std::min(GetLastError(), ERROR_GEN_FAILURE));
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return static_cast<int>(ERROR_FILE_NOT_FOUND);
}
