// One thing that a report tells of, as fields that each form of the report shows in its way. It is filled
// again for the next thing, so that a long list costs no memory.
#pragma once

#include <cstdint>
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
    // These are filled by the caller.
    std::string& lines(const char* title);
    std::string& numbers(const char* member);
    std::vector<Row>& rows(const char* member);
    std::span<const Field> fields() const { return {kept.data(), used}; }

    Mood mood = Mood::plain;
    const char* mark = ""; // a word by which a page can hide the row

private:
    Field& add(const char* member, const char* title, Field::Sort sort, std::size_t width = 0);

    std::vector<Field> kept;
    std::size_t used = 0;
};

// Adds a text to those of a field of lines.
void addLine(std::string& lines, std::string_view text);
