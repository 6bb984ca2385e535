// The result of a run as a text for a person.
#pragma once

#include <ostream>

#include "options.h"
#include "page.h"
#include "session.h"

void writeText(std::ostream& out, const Session& session, const Options& options);
// The changes of the disk under a heading; nothing where there are none.
void writeChanges(Page& page, const std::vector<Change>& changes, const char* heading);
