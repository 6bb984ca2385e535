// Who runs the program and where, and how a path that a person gave finds its file, outside of any tree. A
// backslash is a separator. A path is looked up as it stands first; where a component does not exist, the
// first entry of that directory that equals it ignoring the case of ASCII letters is taken.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system/errors.h"

std::uint32_t currentuser();              // whose rights the program has
std::string username(std::uint32_t user); // the number where it has no name
std::string hostname();

// The path of the entry that the given path names, a dangling link included. What does not exist keeps the
// name that was given, in the directory found so far.
std::string resolvePath(std::string_view path);
// Whether an entry of any kind stands under that name, ignoring case, as far as can be known.
bool pathExists(std::string_view path);

// The current directory; empty if it has gone. Unlike the platform's call it has no limit to its length.
std::string GetCurrentDirectoryA();
// Changes to the directory. Non-zero on success; 0 if it can't be entered.
int SetCurrentDirectoryA(const char* path);

// Makes a directory for the user alone, with all above it that are missing.
Failure makePrivateDirectories(const std::string& path);
