// Making a directory and the current directory of the process. Paths follow the rules of path.h.
#pragma once

#include <string>

// Makes one directory; its parent must exist. Non-zero on success; 0 on failure, and GetLastError tells why:
// 183 where an entry of any kind has that name, ignoring case.
int CreateDirectoryA(const char* path);

// Whether the directory can be entered; if not, GetLastError tells why, 3 where no directory stands there.
bool canEnterDirectory(const char* path);

// Whether a directory stands there, or that can't be known: one that can't be looked into counts.
bool mayBeDirectory(const char* path);

// The current directory; empty if it has gone. Unlike the platform's call it has no limit to its length.
std::string GetCurrentDirectoryA();

// Changes to the directory. Non-zero on success; 0 if it can't be entered.
int SetCurrentDirectoryA(const char* path);
