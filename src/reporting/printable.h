// Bytes of a database on a terminal: what is valid UTF-8 and can be printed stands as it is, every other byte
// as \xHH, so that a key can neither disturb the terminal nor look like another one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

std::string printable(std::string_view bytes);

// How many columns of a terminal a printable text takes: two for a wide character, none for a mark that
// stands over the one before it.
std::size_t columns(std::string_view text);

// How many bytes of a printable text fit into so many columns.
std::size_t bytesOf(std::string_view text, std::size_t columnCount);
