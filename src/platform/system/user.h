// Who runs the program, and where.
#pragma once

#include <cstdint>
#include <string>

std::uint32_t currentuser();              // whose rights the program has
std::string username(std::uint32_t user); // the number where it has no name
std::string hostname();
