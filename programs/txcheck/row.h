// One thing that a report tells of, as fields that each form of the report shows in its way. It is filled
// again for the next thing, so that a long list costs no memory.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

enum class Mood : std::uint8_t { plain, good, bad };

class Row;
struct Field {
    enum Sort : std::uint8_t {
        number,
        bytes,   // a text, of this program or of a database
        lines,   // several texts, a line end between two
        numbers, // a comma between two
        rows,
    };
    const char* member = ""; // in the document; empty: for a person alone
    const char* title = "";  // for a person; empty: for programs alone
    Sort sort = bytes;
    std::size_t width = 0; // columns in a text; 0: what is left of the line
    std::string text;
    std::vector<Row> rowsInIt;
};

class Row {
public:
    void clear();
    Row& number(const char* member, const char* title, long value, std::size_t width = 0);
    Row& text(const char* member, const char* title, std::string_view bytes, std::size_t width = 0);
    Row& truth(const char* member, bool value); // of the document alone
    // These are filled by the caller.
    std::string& text(const char* title);
    std::string& lines(const char* title);
    std::string& numbers(const char* member);
    std::vector<Row>& rows(const char* member);
    std::span<const Field> fields() const { return {kept.data(), used}; }

    Mood mood = Mood::plain;
    const char* mark = ""; // a word by which a page can hide the row
    std::string link;      // where in a page its name leads to

private:
    Field& add(const char* member, const char* title, Field::Sort sort, std::size_t width = 0);

    std::vector<Field> kept;
    std::size_t used = 0;
};

// Gives each text of a field of lines, the one of any other.
template <class Take> void eachLine(const Field& field, Take take) {
    std::string_view rest = field.text;
    for (std::size_t end = field.sort == Field::lines ? rest.find('\n') : rest.npos; end != rest.npos;
         end = rest.find('\n')) {
        take(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    take(rest);
}

// Adds a text to those of a field of lines.
void addLine(std::string& lines, std::string_view text);

// A part of a report.
struct Section {
    enum Shape : std::uint8_t {
        list,    // of rows
        table,   // the same, with the titles of the fields over it in a text too
        object,  // one row
        members, // one row, whose fields are members of the document itself
    };
    const char* member = ""; // in the document; empty: for a person alone
    const char* name = "";   // in a page
    std::string title;       // for a person; empty: for programs alone
    Shape shape = list;
    std::function<bool(Row&)> next; // fills the next row; false where there is none
};

// Rows for things from 0 on.
template <class Fill> std::function<bool(Row&)> rowsTo(std::size_t count, Fill fill) {
    return [n = std::size_t{0}, count, fill](Row& row) mutable {
        if (n == count)
            return false;
        row.clear();
        fill(row, n++);
        return true;
    };
}

// Rows for things that last as long as the section.
template <class Things, class Fill> std::function<bool(Row&)> eachOf(const Things& things, Fill fill) {
    return rowsTo(things.size(), [&things, fill](Row& row, std::size_t n) { fill(row, things[n]); });
}
