#include "changes/linkednames.h"

#include <utility>

const std::vector<std::string>& LinkedNames::of(const FileState& state) {
    if (!std::exchange(looked_, true))
        tree_.lookThrough([this](const Entry& entry) {
            if (entry.state.kind == FileState::plain && entry.state.names > 1)
                names_[entry.state.identity.inode].push_back(entry.name);
        });
    return names_[state.identity.inode];
}

std::string LinkedNames::whyreachesothers(const FileState& state) {
    if (state.names < 2 || state.names <= of(state).size())
        return "";
    return "it has " + std::to_string(state.names) +
           " names, not all of them in the database, and what is written would reach the others too";
}

std::string LinkedNames::other(const std::string& name, const FileState& state) {
    if (state.kind == FileState::plain && state.names > 1)
        for (const std::string& found : of(state))
            if (found != name)
                return found;
    return "";
}
