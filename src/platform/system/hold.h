// The exclusive hold of a file: a lock on the whole open file that goes with the process, is not inherited by
// a program it starts and crosses to other workstations where the file system carries locks.
#pragma once

#include <string>

#include "platform/system/failure.h"

class Tree;

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
