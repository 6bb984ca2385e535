#include "platform/system/utf8.h"

namespace {

unsigned value(char byte) {
    return static_cast<unsigned char>(byte);
}

struct Form {
    unsigned mask, lead, length, least;
};
constexpr Form forms[] = {
    {0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

Utf8Character characterOfForm(const Form& form, std::string_view bytes) {
    std::uint32_t number = value(bytes[0]) & ~form.mask;
    for (std::size_t i = 1; i < form.length; ++i) {
        if ((value(bytes[i]) & 0xC0) != 0x80)
            return {};
        number = number << 6 | (value(bytes[i]) & 0x3F);
    }
    const bool surrogate = number >= 0xD800 && number < 0xE000;
    return number < form.least || surrogate || number > 0x10FFFF ? Utf8Character{}
                                                                 : Utf8Character{number, form.length};
}

} // namespace

Utf8Character utf8Character(std::string_view bytes) {
    for (const Form& form : forms)
        if (bytes.size() >= form.length && (value(bytes[0]) & form.mask) == form.lead)
            return characterOfForm(form, bytes);
    return {};
}

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = utf8Character(bytes).length;
        if (length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

void appendUtf8(std::string& text, std::uint32_t number) {
    const Form* form = forms;
    while (form->length < 4 && number >= form[1].least)
        ++form;
    unsigned shift = 6 * (form->length - 1);
    text.push_back(static_cast<char>(form->lead | number >> shift));
    while (shift > 0) {
        shift -= 6;
        text.push_back(static_cast<char>(0x80 | (number >> shift & 0x3F)));
    }
}
