// A report as a text, for the person at a terminal or in a file.
#pragma once

#include <ostream>

#include "row.h"

// As wide as the terminal that standard output is, in colour where that can be shown and NO_COLOR isn't set;
// into a file or a pipe go whole lines.
void writeText(std::ostream& out, const std::string& title, const std::vector<Section>& sections);

std::string counted(long count, const char* one, const char* many); // "1 key", "2 keys"

// The text in lines of at most so many columns; it breaks at blanks, a long word anywhere.
std::string wrapped(std::string_view text, std::size_t columnCount, std::size_t indent);
