// What stands in a sample: keys, names and values, each computed from the seed and a number, so that any part
// of a sample can be written without the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// How the keys of a sample are ordered: each after the one before; in no order; or in no order,
// with 30 bytes at the beginning that all have in common.
enum class KeyStyle { ordered, shuffled, prefixed };

class Content {
public:
    Content(std::uint32_t seed, KeyStyle style) : seed_(seed), style_(style) {}

    // The key with that number, from 1: like a laboratory's strain number, of ASCII, at most 60 bytes; with a
    // length other than 0, made up to that length with more words, whatever the style. Keys of different
    // numbers differ, also ignoring case.
    std::string key(std::int64_t number, std::size_t length = 0) const;
    // A value of at most 200 bytes, sometimes an empty one.
    std::string fieldvalue(std::int64_t number, int field) const;
    std::int32_t integer(std::int64_t number) const;

private:
    std::uint64_t mix(std::uint64_t purpose, std::int64_t number) const;
    std::string beginning(std::int64_t number, KeyStyle style) const;
    std::string lengthened(std::string text, std::int64_t number, std::size_t length) const;

    std::uint32_t seed_;
    KeyStyle style_;
};

// The name of a field, from 0.
std::string fieldname(int field);
// The name of type t, from 0, of an experiment class from 1 to 5. Names of different types of a class differ.
std::string typenameof(int fileclass, int t);
