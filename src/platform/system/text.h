// A text of a fixed capacity in bytes, its terminator included. What does not fit is cut; the text always
// ends.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

template <std::size_t N> class Text {
public:
    Text() = default;
    Text(const char* text) { *this = text; }

    // Copies the text up to its terminator; at most N - 1 bytes are taken.
    Text& operator=(const char* text) {
        const std::size_t length = strnlen(text, N - 1);
        std::memmove(bytes_, text, length);
        bytes_[length] = '\0';
        return *this;
    }

    // The same. False if the text was cut: where that matters it is another one.
    bool take(const std::string& text) {
        *this = text.c_str();
        return view() == text;
    }

    // Fills the text as printf does; at most N - 1 bytes are kept. Returns the text itself.
    [[gnu::format(printf, 2, 3)]] Text& format(const char* form, ...) {
        std::va_list values;
        va_start(values, form);
        if (std::vsnprintf(bytes_, N, form, values) < 0)
            bytes_[0] = '\0';
        va_end(values);
        return *this;
    }

    operator const char*() const { return bytes_; }
    const char* c_str() const { return bytes_; }
    std::string_view view() const { return bytes_; }
    bool empty() const { return bytes_[0] == '\0'; }
    static constexpr std::size_t capacity() { return N; }

private:
    char bytes_[N] = {};
};
