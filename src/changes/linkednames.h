// The names, below the database's directory, of files that have more than one.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/system/tree.h"

// Looks through the tree once, when first asked.
class LinkedNames {
public:
    explicit LinkedNames(Tree& tree) : tree_(tree) {}

    // All names of the file of that state, as far as they can be read.
    const std::vector<std::string>& of(const FileState& state);
    // Why a file must not be written in place: it has names elsewhere too. Empty where it has none.
    std::string whyreachesothers(const FileState& state);
    // One that is not the name itself; empty where there is none.
    std::string other(const std::string& name, const FileState& state);

private:
    Tree& tree_;
    bool looked_ = false;
    std::map<std::uint64_t, std::vector<std::string>> names_; // by number of the file
};
