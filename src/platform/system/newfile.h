// How a new file comes to its name: it stands in its directory without one, or under a temporary one, until
// it is complete. Nothing outside of the folder includes it.
#pragma once

#include <string>

// Makes a file that is to have the path as its name. name is the one it has meanwhile; empty where it has
// none. Where a file can't be without a name, one that need not be hidden until then gets its own at once.
// The descriptor, for reading and writing, or -1 with the last error set.
int makeNewFile(const std::string& path, bool hidden, std::string& name);

// Gives the file its own name. False where that can't be had, and GetLastError tells why: 183 where another
// entry has it, which is never replaced.
bool nameNewFile(int file, const std::string& path, std::string& name);
