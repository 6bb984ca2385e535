// The per-user settings store: a JSON file under the user's configuration directory, in which the path of a
// key gives the objects. It is read and written as a whole. What values hold are bytes, in any encoding.
#pragma once

#include <memory>
#include <string>

class RegistryKey;
using HKEY = std::shared_ptr<RegistryKey>;

// Opens a key of the current user for reading, as it stands now. 0 on success, else an error number of
// errors.h: 2 if there is no such key, or the store can't be read. A backslash separates the key's parts.
int RegOpenKeyExA(const char* subkey, HKEY& key);

// Reads a value of an open key as a text. 0 on success, 2 if there is no such value; the text is then left
// alone.
int RegQueryValueExA(const HKEY& key, const char* name, std::string& value);

// Opens a key of the current user for writing, made with its first value if missing.
void RegCreateKeyExA(const char* subkey, HKEY& key);

// Writes a value of an open key as a text. 0 on success, and it is on disk; else 5: the store can't be
// written, or is a link, which somebody else may have laid.
int RegSetValueExA(const HKEY& key, const char* name, const std::string& value);

void RegCloseKey(HKEY& key);

// The file in which the store stands.
std::string registryFile();
