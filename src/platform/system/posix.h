// What the sources of this half share in the use of the operating system. Nothing outside of the folder
// includes it.
#pragma once

#include <cerrno>

#include "platform/system/entry.h"
#include "platform/system/errors.h"
#include "platform/system/failure.h"
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

// The same, as a value.
inline Failure faultOf(DiskOperation operation) {
    return {injectedFault(operation) ? ERROR_IO_DEVICE : ERROR_SUCCESS};
}

// The platform's number for a value of errno.
Failure failureFrom(int systemError);

// Of a call that answers 0, or another number and sets errno.
inline Failure answer(int result) {
    return result == 0 ? Failure() : failureFrom(errno);
}

FileState stateFrom(const struct stat& state);
EntryState entryFrom(const struct stat& state);

// Counts one more failed write of the process.
void countFailedWrite();
