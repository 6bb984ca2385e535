#include "undo/content.h"

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"

bool readContent(const std::string& path, std::string& content) {
    ByteStream file;
    content.clear();
    if (!file.open(path.c_str(), OpenMode::read))
        return false;
    const std::int64_t size = file.state().size;
    if (file.readFailure() != 0) // else it would pass for an empty file
        return false;
    if (size > INT32_MAX) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
    content.resize(static_cast<std::size_t>(size));
    return content.empty() || file.read(content.data(), content.size()) == content.size();
}

bool readOwnContent(const std::string& path, const EntryState& state, std::string& content) {
    content.clear();
    if (state.kind == EntryState::symbolic)
        return readLink(path, content);
    return state.kind != EntryState::plain || readContent(path, content);
}

std::string_view bytesAt(std::string_view content, std::int64_t offset, std::size_t count) {
    if (static_cast<std::uint64_t>(offset) > content.size())
        return "";
    return content.substr(static_cast<std::size_t>(offset), count);
}
