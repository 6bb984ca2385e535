#include "changes/linkednames.h"

const std::vector<std::string>& LinkedNames::of(const EntryState& state) {
    if (!looked_)
        lookthrough(".");
    looked_ = true;
    return names_[state.inode];
}

std::string LinkedNames::whyreachesothers(const EntryState& state) {
    if (state.names < 2 || state.names <= of(state).size())
        return "";
    return "it has " + std::to_string(state.names) +
           " names, not all of them in the database, and what is written would reach the others too";
}

std::string LinkedNames::other(const std::string& name, const EntryState& state) {
    if (state.kind == EntryState::plain && state.names > 1)
        for (const std::string& found : of(state))
            if (found != name)
                return found;
    return "";
}

void LinkedNames::lookthrough(const std::string& directory) {
    std::vector<std::string> names;
    if (tree_.names(directory, names))
        return;
    for (const std::string& name : names) {
        const std::string below = directory == "." ? name : directory + "/" + name;
        Entry entry;
        if (tree_.look(below, Links::refused, entry))
            continue;
        if (entry.state.kind == EntryState::plain && entry.state.names > 1)
            names_[entry.state.inode].push_back(below);
        else if (entry.state.kind == EntryState::directory)
            lookthrough(below);
    }
}
