#include "changes/atwork.h"

#include <charconv>
#include <ctime>
#include <utility>

#include "changes/content.h"
#include "platform/system/user.h"

namespace {

constexpr std::string_view title =
    "TX-CHANGE-v1.0\n"
    "A change of this database is at work, or was interrupted: txcheck tells.\n";
constexpr std::size_t largest = 8192;
constexpr std::uint32_t readableForAll = 0444;

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
    text += line("place", change.place);
    return text + line("sum", std::to_string(checksumOf(text)));
}

// Takes a line of that name from the front. False where another stands there.
bool take(std::string_view& text, std::string_view name, std::string& value) {
    const std::size_t end = text.find('\n');
    const std::string_view found = text.substr(0, end);
    if (end == std::string_view::npos || !found.starts_with(name) || found.substr(name.size(), 1) != "=")
        return false;
    value = found.substr(name.size() + 1);
    text.remove_prefix(end + 1);
    return true;
}

template <class Number> bool take(std::string_view& text, std::string_view name, Number& value) {
    std::string digits;
    if (!take(text, name, digits))
        return false;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return error == std::errc() && end == digits.data() + digits.size();
}

bool decode(std::string_view text, ChangeAtWork& change) {
    const std::string_view whole = text;
    std::uint32_t sum = 0;
    if (!text.starts_with(title))
        return false;
    text.remove_prefix(title.size());
    const bool taken = take(text, "undo", change.undo) && take(text, "number", change.number) &&
                       take(text, "group", change.group) && take(text, "user", change.user) &&
                       take(text, "host", change.host) && take(text, "time", change.time) &&
                       take(text, "place", change.place);
    const std::uint32_t found = checksumOf(whole.substr(0, whole.size() - text.size()));
    return taken && take(text, "sum", sum) && sum == found && text.empty() &&
           change.undo.find_first_of("/\\") == std::string::npos;
}

} // namespace

std::string ChangeAtWork::who() const {
    const std::time_t moment = time;
    std::tm parts = {};
    char text[40] = {};
    if (localtime_r(&moment, &parts) != nullptr)
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &parts);
    return "by " + user + " at " + text + " on " + host + " in " + place;
}

Failure AtWork::begin(Tree& tree, const ChangeAtWork& change) {
    NewFile made;
    FileState own;
    Failure failure = tree.make(name, made, Rights::asDirectory, Appears::atOnce);
    if (!failure)
        failure = made.file.lock();
    if (!failure)
        failure = made.file.write(0, encode(change));
    EntryState state;
    if (!failure && !made.file.entry(state)) // a closed one would tell nothing
        failure = made.file.permit(state.permissions | readableForAll);
    if (!failure)
        failure = made.file.state(own);
    if (!failure)
        failure = made.keep();
    if (failure)
        return failure;
    file_ = std::move(made.file);
    Entry entry;
    failure = tree.syncDirectoryOf(name);
    if (!failure)
        failure = tree.look(name, Links::refused, entry);
    if (!failure && entry.file.identity != own.identity)
        failure = {ERROR_FILE_INVALID};
    if (failure) [[maybe_unused]]
        const Failure left = end(tree);
    return failure;
}

Failure AtWork::adopt(Tree& tree) {
    File file;
    Failure failure = tree.openToWrite(name, file, Links::refused);
    if (!failure)
        failure = file.lock();
    if (!failure)
        file_ = std::move(file);
    return failure;
}

Failure AtWork::end(Tree& tree) {
    FileState own;
    Entry entry;
    Failure failure = file_.state(own);
    if (!failure)
        failure = tree.look(name, Links::refused, entry);
    if (!failure && entry.file.identity == own.identity) // else somebody has tidied up
        failure = tree.remove(name, entry.file);
    if (!failure)
        failure = tree.syncDirectoryOf(name);
    if (!failure)
        file_ = File();
    return failure;
}

Failure readtrace(Tree& tree, Trace& trace, ChangeAtWork& change) {
    File file;
    std::string text;
    bool locked = false;
    trace = Trace::none;
    Failure failure = tree.openToRead(AtWork::name, file, Links::refused);
    if (failure)
        return failure.isAbsence() ? Failure() : failure;
    failure = file.lockedForWriting(locked);
    if (!failure)
        failure = file.read(0, largest, text);
    if (failure)
        return failure;
    const bool whole = decode(text, change);
    const bool torn = text.empty() || text.back() != '\n' || text.find('\0') != std::string::npos ||
                      text.find("\nsum=") == std::string::npos;
    if (!whole) {
        change = ChangeAtWork();
        change.user = "somebody"; // what a damaged one tells is not believed, but it was there
        change.host = hostname();
    }
    trace = locked ? Trace::locked : whole || !torn ? Trace::interrupted : Trace::begun;
    return {};
}
