// What txcheck tells the person while it works: lines on standard error, each escaped, whatever stands in
// them came from a file or a name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Writes a line under the program's name.
void tell(std::string_view text);
// The same, of what the report has in a list of its own.
void tellOnly(std::string_view text);
// What was told so far: a report has it once more at its end, where it isn't missed.
const std::vector<std::string>& told();
// Another database begins, which is named in each line where there are several.
void tellOf(const std::string& database);

// Shows how far the reading is, in a line that the next text replaces.
void tellProgress(std::string_view text);
void endProgress();
