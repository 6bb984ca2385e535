// What the sources of this half share in the use of the operating system. Nothing outside of the folder
// includes it.
#pragma once

#include <cerrno>
#include <string>

#include "platform/system/errors.h"
#include "platform/system/faults.h"
#include "platform/system/filestate.h"

struct stat;

// The result of a system call that is made again as long as a signal interrupts it.
template <class Call> auto retryInterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// Whether a test lets this operation fail, which then is a failure of the device.
inline bool injectedFault(DiskOperation operation) {
    if (!diskFault(operation))
        return false;
    SetLastError(ERROR_IO_DEVICE);
    return true;
}

// Leaves the platform's number for a value of errno as the last error. A missing entry is 2 where the
// directory of the path exists, else 3.
void setLastErrorFromErrno(int systemError, const std::string& path);

// The directory in which a path's last component stands: "." for a bare name.
std::string directoryOf(const std::string& path);

// Whether no entry stands there, not even a dangling link. False where that can't be known.
bool isMissing(const std::string& path);

// Opens a plain file, or a link to one, and never waits for anything; with create a missing one is made. The
// path is taken as it stands. The descriptor, not inherited by other programs, or -1 with the last error set.
int openPlainFile(const std::string& path, int flags, bool create);

FileState stateFrom(const struct stat& state);

// Counts one more failed write of the process.
void countFailedWrite();
