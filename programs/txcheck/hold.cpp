#include "hold.h"

#include <algorithm>

#include "model/database.h"
#include "model/marker.h"
#include "platform/system/errors.h"

namespace {

// A text of several lines, as a message box shows it.
std::string inOneLine(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
        const std::size_t end = std::min(text.find_first_not_of('\n', at), text.size());
        text.replace(at, end - at, end - at == 1 ? ". " : " ");
    }
    return text;
}

// Why no database can be checked under that path; empty where one can. What lies below a directory that can't
// be read is unknown as a whole.
std::string obstacle(Tree& tree, const std::string& directory) {
    constexpr std::size_t longest = decltype(TSXdatabase::directory)::capacity() - 1;
    if (directory.empty())
        return "The path of the database directory is empty";
    if (directory.size() > longest)
        return "The path of the database directory is too long: it has at most " + std::to_string(longest) +
               " bytes";
    std::vector<std::string> names;
    Failure failure = tree.open(directory);
    if (!failure)
        failure = tree.names(".", names);
    if (failure)
        return directory + ": Unable to read the database directory (Error code " +
               std::to_string(failure.number) + ": " + failure.text() +
               "). Give one that is there and that you may read";
    return isDatabase(tree) ? std::string() : noDatabaseText(directory.c_str());
}

} // namespace

std::string takeHold(Tree& tree, const std::string& directory, Marker wish, HANDLE& marker) {
    if (std::string text = obstacle(tree, directory); !text.empty())
        return text;
    Entry there;
    const bool missing = wish == Marker::present && !tree.look(markerName, Links::unfollowed, there) &&
                         there.state.kind == FileState::missing;
    if (wish == Marker::left || missing)
        return {};
    marker = openMarker(tree);
    if (marker != INVALID_HANDLE_VALUE)
        return {};
    const std::string advice = lockAdvice(directory.c_str());
    return directory + "/" + markerName + ": " + inOneLine(lockFailureText() + advice);
}
