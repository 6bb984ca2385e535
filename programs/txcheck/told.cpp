#include "told.h"

#include <cstdio>

#include "reporting/printable.h"

namespace {

std::vector<std::string> lines;
std::string prefix;    // the database that is meant
std::size_t shown = 0; // columns of the progress that stands there

} // namespace

void tell(std::string_view text) {
    lines.emplace_back(text);
    tellOnly(text);
}

void tellOnly(std::string_view text) {
    endProgress();
    std::fprintf(stderr, "txcheck: %s\n", printable(prefix + std::string(text)).c_str());
}

void tellOf(const std::string& database) {
    lines.clear();
    prefix = database.empty() ? "" : database + ": ";
}

const std::vector<std::string>& told() {
    return lines;
}

void tellProgress(std::string_view text) {
    std::fprintf(stderr, "\r%-*.*s", static_cast<int>(shown), static_cast<int>(text.size()), text.data());
    shown = text.size();
}

void endProgress() {
    if (shown > 0)
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(shown), "");
    shown = 0;
}
