// The current directory of the process. Paths follow the rules of path.h.
#pragma once

#include <string>

// The current directory; empty if it has gone. Unlike the platform's call it has no limit to its length.
std::string GetCurrentDirectoryA();

// Changes to the directory. Non-zero on success; 0 if it can't be entered.
int SetCurrentDirectoryA(const char* path);
