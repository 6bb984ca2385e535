#include "textform.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

#include "reporting/printable.h"

namespace {

constexpr std::size_t narrowest = 40;
constexpr std::size_t leastRoom = 10; // behind an indent
constexpr std::size_t least = 2;      // columns in front of each row

constexpr const char* bold = "\x1B[1m";

class TextForm {
public:
    explicit TextForm(std::ostream& place);
    // Printable text behind the first words of a line, in that colour; what does not fit goes on below it.
    void writeLine(std::string_view first, std::string_view bytes, const char* colour);
    void writeSection(const Section& section);

private:
    void addAligned(std::string_view bytes, const Field& field);
    void writeTitles(const Row& row);
    void writeRow(const Row& row);
    void writeBeside();

    std::ostream& out;
    std::size_t width = 0; // of the terminal that standard output is; 0: as long as a line is
    bool coloured = false;
    std::string line;
    std::string beside; // what stands beside others in one line
};

TextForm::TextForm(std::ostream& place) : out(place) {
    if (isatty(STDOUT_FILENO) == 0)
        return;
    winsize size = {};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    const char* wish = std::getenv("NO_COLOR");
    width = known ? std::max(narrowest, std::size_t{size.ws_col}) : 80;
    coloured = wish == nullptr || *wish == '\0';
}

void TextForm::writeLine(std::string_view first, std::string_view bytes, const char* colour) {
    const bool marked = coloured && *colour != '\0';
    line = marked ? colour : "";
    line += first;
    if (width == 0)
        addPrintable(line, bytes);
    else {
        const std::size_t indent = columns(first);
        line += wrapped(printable(bytes), std::max(leastRoom, width - std::min(indent, width)), indent);
    }
    line += marked ? "\x1B[0m\n" : "\n";
    out << line;
}

// Numbers stand to the right of their columns.
void TextForm::addAligned(std::string_view bytes, const Field& field) {
    const std::size_t begin = beside.size();
    addPrintable(beside, bytes);
    const std::size_t used = columns(std::string_view(beside).substr(begin));
    const std::size_t blanks = std::max(field.width, used) - used;
    beside.insert(field.sort == Field::number ? begin : beside.size(), blanks, ' ').append(2, ' ');
}

void TextForm::writeBeside() {
    writeLine("", std::string_view(beside).substr(0, beside.find_last_not_of(' ') + 1), "");
}

// The fields with a width stand in one line; each of the others begins below the first of them.
void TextForm::writeRow(const Row& row) {
    constexpr const char* colours[] = {"", "\x1B[32m", "\x1B[31m"};
    beside.assign(least, ' ');
    bool isFirst = true;
    for (const Field& field : row.fields()) {
        if (*field.title == '\0' || field.text.empty())
            continue;
        if (field.width > 0) {
            addAligned(field.text, field);
            continue;
        }
        eachLine(field, [&](std::string_view text) {
            if (!std::exchange(isFirst, false))
                beside.assign(columns(beside), ' ');
            writeLine(beside, text, colours[static_cast<int>(row.mood)]);
        });
    }
    if (isFirst)
        writeBeside();
}

void TextForm::writeTitles(const Row& row) {
    beside.assign(least, ' ');
    for (const Field& field : row.fields())
        if (*field.title != '\0')
            addAligned(field.title, field);
    writeBeside();
}

void TextForm::writeSection(const Section& section) {
    Row row;
    for (bool isFirst = true; section.next(row); isFirst = false) {
        if (isFirst) {
            out << '\n';
            writeLine("", section.title, bold);
        }
        if (isFirst && section.shape == Section::table)
            writeTitles(row);
        writeRow(row);
    }
}

} // namespace

void writeText(std::ostream& out, const std::string& title, const std::vector<Section>& sections) {
    TextForm form(out);
    if (!title.empty())
        form.writeLine("", title, bold);
    for (const Section& section : sections)
        if (!section.title.empty())
            form.writeSection(section);
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
