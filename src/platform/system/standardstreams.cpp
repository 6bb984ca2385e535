#include "platform/system/standardstreams.h"

#include <new>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace {

// Nothing may be asked for here.
[[noreturn]] void endWithoutMemory() {
    constexpr std::string_view text = "There is not enough memory; nothing more is done\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
    constexpr int couldNotWork = 8;
    _exit(couldNotWork);
}

} // namespace

void openStandardStreams() {
    std::set_new_handler(endWithoutMemory);
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0) // the lowest free number is then the stream's own
            [[maybe_unused]]
            const int opened = open("/", O_PATH);
}
