#include "row.h"

#include <charconv>

void Row::clear() {
    used = 0;
    mood = Mood::plain;
    mark = "";
    link.clear();
}

Field& Row::add(const char* member, const char* title, Field::Sort sort, std::size_t width) {
    if (used == kept.size())
        kept.emplace_back();
    Field& field = kept[used++];
    field.member = member;
    field.title = title;
    field.sort = sort;
    field.width = width;
    field.text.clear();
    field.rowsInIt.clear();
    return field;
}

Row& Row::number(const char* member, const char* title, long value, std::size_t width) {
    char digits[24];
    char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    add(member, title, Field::number, width).text.assign(digits, end);
    return *this;
}

Row& Row::text(const char* member, const char* title, std::string_view bytes, std::size_t width) {
    add(member, title, Field::bytes, width).text = bytes;
    return *this;
}

Row& Row::truth(const char* member, bool value) {
    add(member, "", Field::number).text = value ? "true" : "false";
    return *this;
}

std::string& Row::text(const char* title) {
    return add("", title, Field::bytes).text;
}

std::string& Row::lines(const char* title) {
    return add("", title, Field::lines).text;
}

std::string& Row::numbers(const char* member) {
    return add(member, "", Field::numbers).text;
}

std::vector<Row>& Row::rows(const char* member) {
    return add(member, "", Field::rows).rowsInIt;
}

void addLine(std::string& lines, std::string_view text) {
    if (!lines.empty())
        lines += '\n';
    for (const char byte : text) // its own line end would begin another
        if (byte == '\n')
            lines += "\\x0A";
        else
            lines += byte;
}
