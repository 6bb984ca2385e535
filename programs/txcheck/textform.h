// A report as a text, for the person at a terminal.
#pragma once

#include <ostream>

#include "contents.h"

void writeText(std::ostream& out, const std::string& title, const std::vector<Section>& sections);
