// The exclusive hold of a file: a lock on the whole open file that goes with the process, is not inherited by
// a program it starts and crosses to other workstations where the file system carries locks.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/errors.h"
#include "platform/system/file.h"

class Tree;

// Makes a file that is held before anybody sees it, where the file system allows that. Rights gives the
// twelve bits for those that its directory would have it get. 183 where an entry has that name.
Failure makeHeld(Tree& tree, const std::string& name, std::string_view content,
                 std::uint32_t (*rights)(std::uint32_t), File& file);
// Holds one that is there; 32 where it is held elsewhere, 50 when the file system can't lock. Of both it is a
// failure, ERROR_FILE_INVALID, where the name leads to another file by then.
Failure openHeld(Tree& tree, const std::string& name, File& file);

using HANDLE = int;
constexpr HANDLE INVALID_HANDLE_VALUE = -1;

// Opens a plain file in a tree for writing, makes it if it is missing, and holds it exclusively; its content
// is left alone. Who may write in the directory may hold one that was made, and nobody else may read it:
// whoever reads could hold it too. This is the platform's call with access GENERIC_WRITE, share mode 0 and
// disposition OPEN_ALWAYS, the only ones used. On failure INVALID_HANDLE_VALUE, and GetLastError tells why:
// 32 when it is held elsewhere, 50 when the file system can't lock.
HANDLE CreateFileA(Tree& tree, const std::string& name);

// Whether the name still leads to the file that is held. Where nothing has it any more, it is made and held
// anew, under the same handle.
Failure holdStands(HANDLE handle, Tree& tree, const std::string& name);

// Gives up the hold; the file stays.
void CloseHandle(HANDLE handle);
