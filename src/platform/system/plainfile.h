// What is done with a file of the person's own as a whole.
#pragma once

#include <string>

// Deletes a plain file or takes away a link. False on failure, and GetLastError then tells why; a directory
// is refused.
bool removeFile(const std::string& path);
