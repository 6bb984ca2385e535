#include "shown.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "platform/system/text.h"
#include "platform/system/utf8.h"
#include "platform/system/windows1252.h"

std::string shown(std::string_view bytes) {
    return isUtf8(bytes) ? std::string(bytes) : utf8FromWindows1252(bytes);
}

std::string shellWord(const std::string& bytes) {
    const auto isPlain = [](unsigned char byte) {
        return std::isalnum(byte) != 0 || byte >= 0x80 || std::strchr("/._-+,:@%=", byte) != nullptr;
    };
    if (!bytes.empty() && std::ranges::all_of(bytes, isPlain))
        return bytes;
    std::string word = "'";
    for (const char byte : bytes)
        word += byte == '\'' ? "'\\''" : std::string(1, byte);
    return word + "'";
}

std::string hex(std::string_view bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        text += {digits[number >> 4], digits[number & 15]};
    }
    return text;
}

std::string escaped(const std::string& json) {
    if (json.find_first_of("\x7F\xC2") == std::string::npos) // where each of them begins
        return json;
    std::string text;
    for (std::string_view rest = json; !rest.empty();) {
        const Utf8Character first = utf8Character(rest);
        if (first.number >= 0x7F && first.number < 0xA0)
            text += Text<10>().format("\\u%04x", first.number).view();
        else
            text += rest.substr(0, first.length);
        rest.remove_prefix(first.length);
    }
    return text;
}
