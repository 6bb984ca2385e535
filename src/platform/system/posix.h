// What the sources of this half share in the use of the operating system. Nothing outside of the folder
// includes it.
#pragma once

#include <cerrno>

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

// A failure of the device where a test lets this operation fail.
inline Failure faultOf(DiskOperation operation) {
    return {diskFault(operation) ? ERROR_IO_DEVICE : ERROR_SUCCESS};
}

// The platform's number for a value of errno.
Failure failureFrom(int systemError);

// Of a call that answers 0, or another number and sets errno.
inline Failure answer(int result) {
    return result == 0 ? Failure() : failureFrom(errno);
}

// Of what was there a moment ago: that it is away now does not say that nothing stands there.
inline Failure meanwhile(Failure failure) {
    return failure.isAbsence() ? Failure{ERROR_FILE_INVALID} : failure;
}

constexpr const char* defaultList = "system.posix_acl_default"; // of rights, for what is made in a directory

FileState stateFrom(const struct stat& found);
