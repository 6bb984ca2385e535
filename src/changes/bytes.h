// Numbers, texts and key fields as bytes of an undo file, and back. Numbers have the least significant byte
// first.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

// Bytes of which zeros at the end are not stored.
struct StoredBytes {
    std::uint8_t length = 0;
    std::string_view stored;
    std::string whole() const { return std::string(stored).append(length - stored.size(), '\0'); }
};

class Encoder {
public:
    Encoder() = default;
    explicit Encoder(std::string begun) : bytes(std::move(begun)) {} // goes on behind it
    template <class Number> Encoder& number(Number value) {
        const std::uint64_t bits = static_cast<std::make_unsigned_t<Number>>(value);
        char stored[sizeof value];
        for (std::size_t i = 0; i < sizeof value; ++i)
            stored[i] = static_cast<char>(bits >> (8 * i));
        bytes.append(stored, sizeof value);
        return *this;
    }
    Encoder& text(std::string_view value) {
        number(static_cast<std::uint32_t>(value.size()));
        bytes += value;
        return *this;
    }
    // At most 255 bytes.
    Encoder& field(std::string_view value) {
        const std::string_view stored = value.substr(0, value.find_last_not_of('\0') + 1);
        bytes += static_cast<char>(value.size());
        bytes += static_cast<char>(stored.size());
        bytes += stored;
        return *this;
    }

    std::string bytes;
};

// Takes from the front of bytes that anyone may have written. What isn't there is 0 or empty, and good is
// false.
class Decoder {
public:
    explicit Decoder(std::string_view bytes) : rest(bytes) {}

    template <class Number> Number number() {
        std::uint64_t bits = 0;
        const std::string_view bytes = take(sizeof(Number));
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bits |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
        return static_cast<Number>(bits);
    }
    std::string_view text() { return take(number<std::uint32_t>()); }
    StoredBytes field() {
        const auto length = number<std::uint8_t>();
        const auto stored = number<std::uint8_t>();
        good = good && stored <= length;
        return {good ? length : std::uint8_t{0}, take(good ? stored : 0)};
    }
    std::string_view take(std::uint64_t count) {
        good = good && count <= rest.size();
        const std::string_view taken = rest.substr(0, good ? count : 0);
        rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest;
    bool good = true;
};
