#include "platform/system/hold.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/tree.h"

namespace {

constexpr int tries = 5;

// Nobody sees it before it is held, where the file system allows that.
Failure makeHeld(Tree& tree, const std::string& name, File& file) {
    constexpr std::uint32_t anyWrite = 0222;
    NewFile made;
    EntryState state;
    Failure failure = tree.make(name, made, Rights::asDirectory, Appears::atOnce);
    if (!failure)
        failure = made.file.entry(state);
    const std::uint32_t writers = state.permissions & anyWrite;
    if (!failure) // a file system without rights has them from its mount
        [[maybe_unused]]
        const Failure left = made.file.permit(writers | writers << 1);
    if (!failure)
        failure = made.file.lock();
    if (!failure)
        failure = made.keep();
    if (!failure)
        file = std::move(made.file);
    return failure;
}

Failure openHeld(Tree& tree, const std::string& name, File& file) {
    const Failure failure = tree.openToWrite(name, file, Links::refused);
    return failure ? failure : file.lock();
}

// The file that has the name at this moment; of no file where there is none.
Failure identityAt(Tree& tree, const std::string& name, FileIdentity& identity) {
    Entry entry;
    const Failure failure = tree.look(name, Links::refused, entry);
    identity = entry.file.identity;
    return failure;
}

Failure takeHold(Tree& tree, const std::string& name, File& file) {
    FileIdentity there;
    FileState own;
    Failure failure = identityAt(tree, name, there);
    if (failure)
        return failure;
    failure = there == FileIdentity() ? makeHeld(tree, name, file) : openHeld(tree, name, file);
    if (!failure)
        failure = file.state(own);
    if (!failure)
        failure = identityAt(tree, name, there);
    return failure || there == own.identity ? failure : Failure{ERROR_FILE_INVALID};
}

// Another program may make, replace or take it away meanwhile.
Failure takeHoldInTheEnd(Tree& tree, const std::string& name, File& file) {
    Failure failure;
    for (int i = 0; i < tries; ++i) {
        failure = takeHold(tree, name, file);
        const bool moved = failure.number == ERROR_FILE_INVALID || failure.number == ERROR_FILE_NOT_FOUND ||
                           failure.number == ERROR_ALREADY_EXISTS;
        if (!moved)
            break;
    }
    return failure;
}

} // namespace

HANDLE CreateFileA(Tree& tree, const std::string& name) {
    File file;
    return succeeded(takeHoldInTheEnd(tree, name, file)) ? file.release() : INVALID_HANDLE_VALUE;
}

Failure holdStands(HANDLE handle, Tree& tree, const std::string& name) {
    FileState own;
    FileIdentity there;
    File held(handle);
    Failure failure = held.state(own);
    held.release();
    if (!failure)
        failure = identityAt(tree, name, there);
    if (failure || there == own.identity)
        return failure;
    if (there != FileIdentity())
        return {ERROR_FILE_INVALID};
    File file;
    failure = takeHoldInTheEnd(tree, name, file);
    return failure || dup3(file.descriptor(), handle, O_CLOEXEC) >= 0 ? failure : failureFrom(errno);
}

void CloseHandle(HANDLE handle) {
    if (handle != INVALID_HANDLE_VALUE)
        close(handle);
}
