// The exclusive hold of a file: a lock on the whole open file that goes with the process, is not inherited by
// a program it starts and crosses to other workstations where the file system carries locks.
#pragma once

using HANDLE = int;
constexpr HANDLE INVALID_HANDLE_VALUE = -1;

// Opens a plain file for writing, makes it if it is missing, writable by whom its directory is, and holds it
// exclusively; its content is left alone. This is the platform's call with access GENERIC_WRITE, share mode 0
// and disposition OPEN_ALWAYS, the only ones used. On failure INVALID_HANDLE_VALUE, and GetLastError tells
// why: 32 when it is held elsewhere, 50 when the file system can't lock.
HANDLE CreateFileA(const char* path);

// Gives up the hold; the file stays.
void CloseHandle(HANDLE handle);
