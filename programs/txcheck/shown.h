// Bytes of a database as Unicode, as the windows show them: what is valid UTF-8 as a whole is that, all else
// is Windows-1252.
#pragma once

#include <string>
#include <string_view>

std::string shown(std::string_view bytes);       // as UTF-8
std::string shellWord(const std::string& bytes); // one word of a command line, in quotes where it needs them
std::string hex(std::string_view bytes);         // two small digits for each byte

// A text of JSON in which the control characters that its library leaves, and a terminal may obey, are
// escapes.
std::string escaped(const std::string& json);
