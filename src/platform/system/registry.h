// The per-user settings store, read only: an INI file under the user's configuration directory, in which the
// path of a key gives the groups.
#pragma once

#include <memory>
#include <string>

class RegistryKey;
using HKEY = std::shared_ptr<RegistryKey>;

// Opens a key of the current user for reading. 0 on success, else an error number of errors.h: 2 if there is
// no such key. A backslash separates the key's parts.
int RegOpenKeyExA(const char* subkey, HKEY& key);

// Reads a value of an open key as a text. 0 on success, 2 if there is no such value; the text is then left
// alone.
int RegQueryValueExA(const HKEY& key, const char* name, std::string& value);

void RegCloseKey(HKEY& key);

// The file in which the store stands; what fills the store writes it.
std::string registryFile();
