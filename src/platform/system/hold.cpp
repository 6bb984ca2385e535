#include "platform/system/hold.h"

#include <fcntl.h>
#include <unistd.h>

#include "platform/system/posix.h"
#include "platform/system/tree.h"

namespace {

// The file that has the name at this moment; of no file where there is none.
Failure identityAt(Tree& tree, const std::string& name, FileIdentity& identity) {
    Entry entry;
    const Failure failure = tree.look(name, Links::unfollowed, entry);
    identity = entry.state.identity;
    return failure;
}

Failure leadsTo(Tree& tree, const std::string& name, const File& file) {
    FileIdentity there;
    FileState own;
    Failure failure = file.state(own);
    failure = failure ? failure : identityAt(tree, name, there);
    return failure || there == own.identity ? failure : Failure{ERROR_FILE_INVALID};
}

// Who may write in the directory may hold it, and nobody else may read it: whoever reads could hold it too.
std::uint32_t rightsOfWriters(std::uint32_t permissions) {
    const std::uint32_t writers = permissions & 0222;
    return writers | writers << 1;
}

// Another program may make, replace or take it away meanwhile.
Failure takeHold(Tree& tree, const std::string& name, File& file) {
    constexpr int tries = 5;
    Failure failure;
    for (int i = 0; i < tries; ++i) {
        FileIdentity there;
        failure = identityAt(tree, name, there);
        if (!failure)
            failure = there == FileIdentity() ? makeHeld(tree, name, "", rightsOfWriters, file)
                                              : openHeld(tree, name, file);
        if (failure.number != ERROR_FILE_INVALID && failure.number != ERROR_FILE_NOT_FOUND &&
            failure.number != ERROR_ALREADY_EXISTS)
            break;
    }
    return failure;
}

} // namespace

Failure makeHeld(Tree& tree, const std::string& name, std::string_view content,
                 std::uint32_t (*rights)(std::uint32_t), File& file) {
    NewFile made;
    FileState state;
    Failure failure = tree.make(name, made, Rights::asDirectory, Appears::atOnce);
    failure = failure ? failure : made.file.lock();
    failure = failure ? failure : made.file.write(0, content);
    failure = failure ? failure : made.file.state(state);
    if (!failure) // a file system without rights has them from its mount
        [[maybe_unused]]
        const Failure left = made.file.permit(rights(state.permissions));
    failure = failure ? failure : made.keep();
    failure = failure ? failure : leadsTo(tree, name, file = std::move(made.file));
    return failure;
}

Failure openHeld(Tree& tree, const std::string& name, File& file) {
    Failure failure = tree.openToWrite(name, file, Links::unfollowed);
    failure = failure ? failure : file.lock();
    return failure ? failure : leadsTo(tree, name, file);
}

HANDLE CreateFileA(Tree& tree, const std::string& name) {
    File file;
    return succeeded(takeHold(tree, name, file)) ? file.release() : INVALID_HANDLE_VALUE;
}

Failure holdStands(HANDLE handle, Tree& tree, const std::string& name) {
    FileIdentity there;
    File held(handle);
    const Failure stands = leadsTo(tree, name, held);
    held.release();
    const Failure unknown = identityAt(tree, name, there);
    if (stands.number != ERROR_FILE_INVALID || unknown || there != FileIdentity())
        return stands;
    File file;
    const Failure failure = takeHold(tree, name, file);
    return failure || dup3(file.descriptor(), handle, O_CLOEXEC) >= 0 ? failure : failureFrom(errno);
}

void CloseHandle(HANDLE handle) {
    if (handle != INVALID_HANDLE_VALUE)
        close(handle);
}
