// The result of a run as one JSON document.
#pragma once

#include <ostream>

#include "options.h"
#include "session.h"

// A text goes out as the windows show it. Where its bytes are no valid UTF-8, a member of the same name with
// _hex behind it has them all.
void writeJson(std::ostream& out, const Session& session, const Options& options);
