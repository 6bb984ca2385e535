// What can be made wrong with a sample, as a table. Each damage adds files of its own with keys of its own,
// so that any of them can be left out or combined, and the sound part of the tree stays as it is.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class SampleTree;

struct Damage {
    const char* name;
    // Takes keys from that number on.
    void (*make)(SampleTree& tree, std::int64_t firstkey);
};

extern const std::vector<Damage> damagetable;

bool isdamagename(const std::string& name); // of the table, or "all"

// Makes the damages that the tree's options name, in the order of the table.
void makedamages(SampleTree& tree);
