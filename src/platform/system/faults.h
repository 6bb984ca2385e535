// The one seam through which a test makes a disk operation fail or end the process at it. Every disk
// operation of the program asks it first; with no hook set that is one comparison.
#pragma once

enum class DiskOperation { open, read, write, seek, sync, close, link, remove, makeDirectory, lock };

// Answers whether this operation is to fail. It may also not return at all.
using DiskFaultHook = bool (*)(DiskOperation);

inline DiskFaultHook diskFaultHook = nullptr; // none outside of tests

inline bool diskFault(DiskOperation operation) {
    return diskFaultHook != nullptr && diskFaultHook(operation);
}
