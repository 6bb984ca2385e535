// A text for a person, as wide as the terminal that it goes to: lines that go on with an indent, columns,
// headings, colour where that can be shown. Into a file or a pipe go whole lines.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

class Terminal {
public:
    enum class Colour { none, green, red, bold };

    // Takes the width and whether there is colour from what standard output is. NO_COLOR in the environment
    // switches colour off.
    explicit Terminal(std::ostream& stream);

    // A line of printable text behind its first words; what does not fit goes on below the text.
    void line(std::string_view first, std::string_view text, Colour colour = Colour::none);
    void heading(std::string_view text); // behind an empty line

private:
    std::ostream& out;
    std::size_t width; // 0: as long as a line is
    bool coloured = false;
};

std::string padded(std::string text, std::size_t columnCount);
std::string counted(long count, const char* one, const char* many); // "1 key", "2 keys"

// The text in lines of at most so many columns; it breaks at blanks, a long word anywhere.
std::string wrapped(std::string_view text, std::size_t columnCount, std::size_t indent);
