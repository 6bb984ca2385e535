// The answer to --explain: one problem with all that it is about.
#pragma once

#include <ostream>

#include "options.h"
#include "session.h"

// What there is to say of the problem in that row, or with that id. 0 if there is none.
int rowToExplain(const TSXdatabase& database, const std::string& what);
void writeExplanation(std::ostream& out, const TSXproblem& problem, int row);
