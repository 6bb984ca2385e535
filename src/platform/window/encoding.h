// A text that looks alike may be kept in two ways, as UTF-8 or as Windows-1252.
#pragma once

#include <string>
#include <string_view>

// The bytes of the same text in the other encoding; the text itself where it has none, as for plain ASCII.
std::string inOtherEncoding(std::string_view bytes);
