// What stands in a key field that is being changed.
#pragma once

#include <string_view>

#include "undo/undofile.h"

enum class Standing { after, before, torn, foreign };

// Torn: the first bytes of one and the last of the other, as a write leaves it that stopped. Behind the end
// of a file zeros are taken to stand.
Standing standingOf(std::string_view content, const FieldChange& field);

std::string keyIn(std::string_view field); // the text that the bytes of a key field hold
