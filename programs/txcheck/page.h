// A text for a person, as wide as the terminal that it goes to: lines that go on with an indent, columns,
// headings, colour where that can be shown.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

class Page {
public:
    enum class Colour { none, bold, green, yellow, red };

    // Takes the width and whether there is colour from what standard output is: that of the terminal, else 80
    // columns and none. NO_COLOR in the environment switches colour off.
    explicit Page(std::ostream& stream);

    // A line of printable text behind its first words; what does not fit goes on below the text.
    void line(std::string_view first, std::string_view text, Colour colour = Colour::none);
    // The same, with the first words brought to a number of columns; longer ones have a line of their own.
    void line(std::size_t columnCount, std::string_view first, std::string_view text);
    void heading(std::string_view text); // behind an empty line

    std::size_t width = 80;

private:
    std::ostream& out;
    bool coloured = false;
};

std::string padded(std::string text, std::size_t columnCount);
std::string counted(long count, const char* one, const char* many); // "1 key", "2 keys"

// The text in lines of at most so many columns; it breaks at blanks, a long word anywhere.
std::string wrapped(std::string_view text, std::size_t columnCount, std::size_t indent);
