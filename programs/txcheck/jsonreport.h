// The result of a run as one JSON document.
#pragma once

#include <ostream>

#include "options.h"
#include "session.h"

// Texts go out byte by byte, each byte as the character with that number, so that nothing is lost whatever
// the bytes.
void writeJson(std::ostream& out, Session& session, const Options& options);
