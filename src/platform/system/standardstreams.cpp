#include "platform/system/standardstreams.h"

#include <fcntl.h>
#include <unistd.h>

void openStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0) { // the lowest free number is then the stream's own
            [[maybe_unused]] const int opened =
                open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
}
