// The order of names, and the look-up of one among the sorted names of a directory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The order of names: ascending, ASCII small letters counted as capitals; names that are equal so by their
// plain bytes, or not told apart.
bool beforeInOrder(const std::string& a, const std::string& b);
bool beforeIgnoringCase(std::string_view a, std::string_view b);

// The entry of that very name, else the first that equals it ignoring the case of ASCII letters, else none.
// The names are in order.
const std::string* findName(const std::vector<std::string>& names, std::string_view name);
