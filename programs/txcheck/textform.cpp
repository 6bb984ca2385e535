#include "textform.h"

#include <algorithm>
#include <cstdlib>

#include <sys/ioctl.h>
#include <unistd.h>

#include "reporting/printable.h"

namespace {

constexpr std::size_t narrowest = 40;
constexpr std::size_t leastRoom = 10; // behind an indent
constexpr std::size_t least = 2;      // columns in front of each row

// What standard output is.
struct Screen {
    std::ostream& out;
    std::size_t width = 0; // 0: as long as a line is
    bool coloured = false;
};

Screen screenOf(std::ostream& out) {
    if (isatty(STDOUT_FILENO) == 0)
        return {out};
    winsize size = {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    const char* wish = std::getenv("NO_COLOR");
    return {out, known ? std::max(narrowest, std::size_t{size.ws_col}) : 80,
            wish == nullptr || *wish == '\0'};
}

// A line of printable text behind its first words, in that colour; what does not fit goes on below the text.
void writeLine(const Screen& screen, std::string_view first, std::string_view text, const char* colour) {
    const bool marked = screen.coloured && *colour != '\0';
    const std::size_t indent = columns(first);
    screen.out << (marked ? colour : "") << first;
    if (screen.width == 0)
        screen.out << text;
    else
        screen.out << wrapped(text, std::max(leastRoom, screen.width - std::min(indent, screen.width)),
                              indent);
    screen.out << (marked ? "\x1B[0m" : "") << '\n';
}

constexpr const char* bold = "\x1B[1m";

// Adds what stands beside others in one line, numbers to the right of their columns.
void addAligned(std::string& line, std::string_view text, const Field& field) {
    const bool right = field.sort == Field::number;
    const std::size_t used = columns(text);
    const std::size_t blanks = std::max(field.width, used) - used;
    line.append(right ? blanks : 0, ' ').append(text).append(right ? 2 : blanks + 2, ' ');
}

void writeBare(const Screen& screen, std::string_view text) {
    writeLine(screen, "", text.substr(0, text.find_last_not_of(' ') + 1), "");
}

// The fields with a width stand in one line; each of the others begins below the first of them.
void writeRow(const Screen& screen, const Row& row) {
    constexpr const char* colours[] = {"", "\x1B[32m", "\x1B[31m"};
    std::string first(least, ' ');
    bool isFirst = true;
    for (const Field& field : row.fields()) {
        if (*field.title == '\0' || field.text.empty())
            continue;
        if (field.width > 0) {
            addAligned(first, printable(field.text), field);
            continue;
        }
        eachLine(field, [&](std::string_view line) {
            writeLine(screen, isFirst ? first : std::string(columns(first), ' '), printable(line),
                      colours[static_cast<int>(row.mood)]);
            isFirst = false;
        });
    }
    if (isFirst)
        writeBare(screen, first);
}

void writeTitles(const Screen& screen, const Row& row) {
    std::string line(least, ' ');
    for (const Field& field : row.fields())
        if (*field.title != '\0')
            addAligned(line, field.title, field);
    writeBare(screen, line);
}

void writeSection(const Screen& screen, const Section& section) {
    Row row;
    for (bool isFirst = true; section.next(row); isFirst = false) {
        if (isFirst) {
            screen.out << '\n';
            writeLine(screen, "", printable(section.title), bold);
        }
        if (isFirst && section.shape == Section::table)
            writeTitles(screen, row);
        writeRow(screen, row);
    }
}

} // namespace

void writeText(std::ostream& out, const std::string& title, const std::vector<Section>& sections) {
    const Screen screen = screenOf(out);
    if (!title.empty())
        writeLine(screen, "", printable(title), bold);
    for (const Section& section : sections)
        if (!section.title.empty())
            writeSection(screen, section);
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
