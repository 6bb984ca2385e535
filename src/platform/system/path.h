// How a path that a person gave finds its file, outside of any tree. A backslash is a separator. A path is
// looked up as it stands first; where a component does not exist, the first entry of that directory that
// equals it ignoring the case of ASCII letters is taken.
#pragma once

#include <string>
#include <string_view>

// The path of the entry that the given path names, a dangling link included. What does not exist keeps the
// name that was given, in the directory found so far.
std::string resolvePath(std::string_view path);

// Whether an entry of any kind stands under that name, ignoring case, as far as can be known.
bool pathExists(std::string_view path);
