// The result of a run as one HTML page that needs nothing else: good on paper, in the dark and without
// scripts.
#pragma once

#include <string>

#include "options.h"
#include "session.h"

std::string htmlReport(const Session& session, const Options& options);
