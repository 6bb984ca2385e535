// Bytes of a database on a terminal: what is valid UTF-8 and can be printed stands as it is, every other byte
// as \xHH, so that a key can neither disturb the terminal nor look like another one.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// Answers whether a text has nothing but visible signs of ASCII, some of them left out: most texts of a
// database, which need no closer look then.
class PlainText {
public:
    explicit constexpr PlainText(std::string_view leftOut) {
        for (std::size_t byte = ' '; byte < 0x7F; ++byte)
            plain[byte] = leftOut.find(static_cast<char>(byte)) == std::string_view::npos;
    }
    bool operator()(std::string_view text) const {
        return std::ranges::all_of(text, [this](unsigned char byte) { return plain[byte]; });
    }

private:
    std::array<bool, 256> plain = {};
};

std::string printable(std::string_view bytes);
void addPrintable(std::string& text, std::string_view bytes); // the same behind a text

// How many columns of a terminal a printable text takes: two for a wide character, none for a mark that
// stands over the one before it.
std::size_t columns(std::string_view text);

// How many bytes of a printable text fit into so many columns.
std::size_t bytesOf(std::string_view text, std::size_t columnCount);
