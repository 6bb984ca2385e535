// Bytes as UTF-8 text. What of a text is valid is decided here alone, so that every output agrees on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct Utf8Character {
    std::uint32_t number = 0;
    std::size_t length = 0; // in bytes; 0 where no whole character stands
};

// The character at the start of the bytes. Overlong forms, surrogates and numbers above 10FFFF are none.
Utf8Character utf8Character(std::string_view bytes);

// Whether the whole of the bytes is valid UTF-8.
bool isUtf8(std::string_view bytes);

// Appends the character of that number, up to 10FFFF.
void appendUtf8(std::string& text, std::uint32_t number);
