// Bytes of Windows-1252, which is Latin-1 but for 0x80 to 0x9F. A byte without a meaning there is the control
// character of its number.
#pragma once

#include <string>
#include <string_view>

std::string utf8FromWindows1252(std::string_view bytes);

// The byte of a character, '?' for one that has none.
char windows1252Of(char16_t character);
