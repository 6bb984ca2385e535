#include "terminal.h"

#include <algorithm>
#include <cstdlib>

#include <sys/ioctl.h>
#include <unistd.h>

#include "reporting/printable.h"

namespace {

constexpr std::size_t narrowest = 40;
constexpr std::size_t leastroom = 10; // behind an indent

} // namespace

Terminal::Terminal(std::ostream& stream) : out(stream), width(0) {
    if (isatty(STDOUT_FILENO) == 0)
        return;
    winsize size = {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    width = known ? std::max(narrowest, std::size_t{size.ws_col}) : 80;
    const char* wish = std::getenv("NO_COLOR");
    coloured = wish == nullptr || *wish == '\0';
}

void Terminal::line(std::string_view first, std::string_view text, Colour colour) {
    constexpr const char* codes[] = {"", "\x1B[32m", "\x1B[31m", "\x1B[1m"};
    const bool marked = coloured && colour != Colour::none;
    out << (marked ? codes[static_cast<int>(colour)] : "") << first;
    if (width == 0) {
        out << text;
    } else {
        const std::size_t indent = columns(first);
        out << wrapped(text, std::max(leastroom, width - std::min(indent, width)), indent);
    }
    out << (marked ? "\x1B[0m" : "") << '\n';
}

void Terminal::heading(std::string_view text) {
    out << '\n';
    line("", text, Colour::bold);
}

std::string padded(std::string text, std::size_t columnCount) {
    const std::size_t used = columns(text);
    if (used < columnCount)
        text.append(columnCount - used, ' ');
    return text;
}

std::string counted(long count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string wrapped(std::string_view text, std::size_t columnCount, std::size_t indent) {
    std::string lines;
    while (columns(text) > columnCount) {
        std::size_t cut = bytesOf(text, columnCount);
        const std::size_t blank = text.rfind(' ', cut);
        if (blank != std::string_view::npos && text.find_first_not_of(' ') < blank)
            cut = blank;
        const std::string_view line = text.substr(0, cut);
        lines += line.substr(0, line.find_last_not_of(' ') + 1);
        lines += '\n' + std::string(indent, ' ');
        text.remove_prefix(cut);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    lines += text;
    return lines;
}
