#include "textform.h"

#include <algorithm>

#include "reporting/printable.h"
#include "terminal.h"

namespace {

constexpr std::size_t least = 2; // columns in front of each row

// Adds what stands beside others in one line, numbers to the right of their columns.
void addAligned(std::string& line, std::string_view text, std::size_t width, bool right) {
    const std::size_t blanks = width - std::min(columns(text), width);
    line.append(right ? blanks : 0, ' ').append(text).append(right ? 2 : blanks + 2, ' ');
}

// The fields with a width stand in one line; each of the others begins below the first of them.
void writeRow(Terminal& terminal, const Row& row) {
    constexpr Terminal::Colour colours[] = {Terminal::Colour::none, Terminal::Colour::green,
                                            Terminal::Colour::red};
    std::string first(least, ' ');
    bool open = true;
    const auto line = [&](std::string_view text) {
        terminal.line(open ? first : std::string(columns(first), ' '), text,
                      colours[static_cast<int>(row.mood)]);
        open = false;
    };
    for (const Field& field : row.fields()) {
        if (*field.title == '\0' || field.text.empty())
            continue;
        if (field.width > 0) {
            addAligned(first, printable(field.text), field.width, field.sort == Field::number);
            continue;
        }
        std::string_view rest = field.text;
        for (std::size_t end = 0; end != std::string_view::npos;) {
            end = field.sort == Field::lines ? rest.find('\n') : std::string_view::npos;
            line(printable(rest.substr(0, end)));
            rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        }
    }
    if (open)
        terminal.line("", first.substr(0, first.find_last_not_of(' ') + 1));
}

void writeTitles(Terminal& terminal, const Row& row) {
    std::string line(least, ' ');
    for (const Field& field : row.fields())
        if (*field.title != '\0')
            addAligned(line, field.title, std::max(field.width, columns(field.title)),
                       field.sort == Field::number);
    terminal.line("", line.substr(0, line.find_last_not_of(' ') + 1));
}

void writeSection(Terminal& terminal, const Section& section) {
    Row row;
    for (bool first = true; section.next(row); first = false) {
        if (first)
            terminal.heading(printable(section.title));
        if (first && section.shape == Section::table)
            writeTitles(terminal, row);
        writeRow(terminal, row);
    }
}

} // namespace

void writeText(std::ostream& out, const std::string& title, const std::vector<Section>& sections) {
    Terminal terminal(out);
    if (!title.empty())
        terminal.line("", printable(title), Terminal::Colour::bold);
    for (const Section& section : sections)
        if (!section.title.empty())
            writeSection(terminal, section);
}
