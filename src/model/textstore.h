// Texts side by side that are let go in one step. None moves or goes as long as the store is there.
#pragma once

#include <memory_resource>
#include <string_view>

class TextStore {
public:
    // A copy of the text with a terminator behind it.
    std::string_view keep(std::string_view text) {
        char* const copy = static_cast<char*>(bytes_.allocate(text.size() + 1, 1));
        copy[text.copy(copy, text.size())] = '\0';
        return {copy, text.size()};
    }

private:
    std::pmr::monotonic_buffer_resource bytes_;
};
