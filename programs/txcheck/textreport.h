// The result of a run as a text for a person.
#pragma once

#include <ostream>

#include "options.h"
#include "session.h"

void writeText(std::ostream& out, const Session& session, const Options& options);
