#include "changes/atwork.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>

#include "changes/content.h"
#include "changes/undodirectory.h"
#include "platform/system/hold.h"
#include "platform/system/person.h"

namespace {

constexpr std::string_view title =
    "TX-CHANGE-v1.0\n"
    "A change of this database is at work, or was interrupted: txcheck tells.\n";
constexpr std::size_t largest = 8192;

std::uint32_t readableForAll(std::uint32_t permissions) { // a closed one would tell nothing
    return permissions | 0444;
}

// A line holds a name and a value; what would break it is left out.
std::string line(const char* name, std::string value) {
    std::erase_if(value, [](char byte) { return byte == '\n' || byte == '\0'; });
    return std::string(name) + "=" + value + "\n";
}

std::string encode(const ChangeAtWork& change) {
    std::string text(title);
    text += line("undo", change.undo) + line("number", std::to_string(change.number));
    text += line("group", std::to_string(change.group)) + line("user", change.user);
    text += line("host", change.host) + line("time", std::to_string(change.time));
    text += line("place", change.directory);
    return text + line("sum", std::to_string(checksumOf(text)));
}

// What encode has made, and nothing else.
bool decode(const std::string& text, ChangeAtWork& change) {
    std::map<std::string, std::string> values;
    std::istringstream lines(text.substr(std::min(title.size(), text.size())));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t end = std::min(line.find('='), line.size() - 1);
        values[line.substr(0, end)] = line.substr(end + 1);
    }
    change.undo = values["undo"];
    change.number = std::strtoull(values["number"].c_str(), nullptr, 10);
    change.group = static_cast<std::uint32_t>(std::strtoul(values["group"].c_str(), nullptr, 10));
    change.user = values["user"];
    change.host = values["host"];
    change.time = std::strtoll(values["time"].c_str(), nullptr, 10);
    change.directory = values["place"];
    return encode(change) == text && change.undo.find_first_of("/\\") == std::string::npos;
}

} // namespace

std::string ChangeAtWork::who() const {
    return "by " + user + " at " + timetext(time).substr(0, 16) + " on " + host + " in " + directory;
}

Failure AtWork::begin(Tree& tree, const ChangeAtWork& change) {
    File place; // has its times again where nothing comes of it
    Failure failure = tree.openEntry(".", place);
    failure = failure ? failure : makeHeld(tree, name, encode(change), readableForAll, file_);
    failure = failure ? failure : tree.syncDirectoryOf(name);
    if (failure && stands() && !end(tree)) [[maybe_unused]]
        const Failure left = place.giveTimes(place.opened().read, place.opened().changed);
    return failure;
}

Failure AtWork::adopt(Tree& tree) {
    const Failure failure = openHeld(tree, name, file_);
    if (failure)
        file_ = File();
    return failure;
}

// Where another stands there or none, somebody has tidied up.
Failure AtWork::end(Tree& tree) {
    FileState own;
    Entry entry;
    Failure failure = file_.state(own);
    failure = failure ? failure : tree.look(name, Links::unfollowed, entry);
    if (!failure && entry.state.identity == own.identity)
        failure = tree.remove(name, entry.state);
    failure = failure ? failure : tree.syncDirectoryOf(name);
    if (!failure)
        file_ = File();
    return failure;
}

Failure readtrace(Tree& tree, Trace& trace, ChangeAtWork& change) {
    File file;
    std::string text;
    bool locked = false;
    trace = Trace::none;
    Failure failure = tree.openToRead(AtWork::name, file, Links::unfollowed);
    if (failure)
        return failure.isAbsence() ? Failure() : failure;
    failure = file.lockedForWriting(locked);
    failure = failure ? failure : file.read(0, largest, text);
    if (failure)
        return failure;
    const bool whole = decode(text, change);
    // Cut off it is the start of what it was to be, or zeros stand where its bytes did not arrive. One that
    // ends in a whole line is rather damaged than cut off just there.
    const bool torn =
        text.find('\0') != std::string::npos || (!text.ends_with('\n') && encode(change).starts_with(text));
    if (!whole) {
        change = ChangeAtWork();
        change.user = "somebody"; // what a damaged one tells is not believed, but it was there
        change.host = hostname();
    }
    trace = locked ? Trace::locked : whole || !torn ? Trace::interrupted : Trace::begun;
    return {};
}
