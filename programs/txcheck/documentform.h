// A report as one JSON document, in the members and the order that docs/report.md tells.
#pragma once

#include <ostream>

#include "row.h"

// In one line, or with a line for each thing: a document of a large database can be read in an editor then.
void writeDocument(std::ostream& out, const std::vector<Section>& sections, bool inOneLine);
