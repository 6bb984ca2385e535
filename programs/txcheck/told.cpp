#include "told.h"

#include <cstdio>

#include "reporting/printable.h"

namespace {

std::vector<std::string> lines;
std::size_t shown = 0; // columns of the progress that stands there

} // namespace

void tell(std::string_view text) {
    endProgress();
    lines.push_back(printable(text));
    std::fprintf(stderr, "txcheck: %s\n", lines.back().c_str());
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
