// A copy of a database that can be shown to anyone: every key, name and field value is replaced by another of
// the same length, so that what was equal ignoring case stays equal and what was in order stays in order.
// Lengths, offsets and damage stay, what the tool never reads becomes zeros, and the copy has the same
// problems.
#pragma once

#include <cstdint>
#include <string>

struct CopyResult {
    int files = 0;
    int unread = 0;      // things that could not be read, and are left out or cut
    std::string failure; // empty on success, else which file and what was tried; the copy is incomplete
};

// The copy's directory is made if missing and has to be empty. Another seed gives other texts.
CopyResult copyAnonymously(const std::string& from, const std::string& to, std::uint32_t seed);
