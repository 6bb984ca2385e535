#include "undo/undofile.h"

#include <algorithm>

#include <zlib.h>

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "undo/content.h"

namespace {

constexpr std::string_view magic("TX-UNDO-v1.0\0\0\0\0", 16);
constexpr std::int64_t largestFile = std::int64_t{1} << 32;
constexpr std::size_t largestField = 69;

EntryState readState(Decoder& from) {
    EntryState state;
    state.kind = static_cast<EntryState::Kind>(from.number<std::uint8_t>());
    state.permissions = from.number<std::uint32_t>();
    state.owner = from.number<std::uint32_t>();
    state.group = from.number<std::uint32_t>();
    state.inode = from.number<std::uint64_t>();
    state.names = from.number<std::uint64_t>();
    state.size = from.number<std::int64_t>();
    for (Moment* moment : {&state.read, &state.changed}) {
        moment->seconds = from.number<std::int64_t>();
        moment->nanoseconds = from.number<std::uint32_t>();
        from.good = from.good && moment->nanoseconds < 1000000000;
    }
    from.good = from.good && state.kind <= EntryState::symbolic && state.permissions <= 07777 &&
                state.size >= 0 && state.size <= largestFile;
    return state;
}

// A name leads to nothing outside of the database directory.
bool isInside(std::string_view name) {
    if (name.find('\0') != std::string_view::npos)
        return false;
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t end = std::min(name.find('/', at), name.size());
        const std::string_view part = name.substr(at, end - at);
        if (part.empty() || part == "." || part == "..")
            return false;
        at = end + 1;
    }
    return true;
}

bool isText(std::string_view text) {
    return text.find('\0') == std::string_view::npos;
}

void readFields(Decoder& from, UndoItem& item) {
    item.checksum = from.number<std::uint32_t>();
    item.sizeAfter = from.number<std::int64_t>();
    const auto count = from.number<std::uint32_t>();
    for (std::uint32_t i = 0; i < count && from.good; ++i) {
        FieldChange& field = item.fields.emplace_back();
        field.record = from.number<std::int32_t>();
        field.offset = from.number<std::int64_t>();
        field.before = from.field();
        field.after = from.field();
        from.good = from.good && field.offset >= 0 && field.offset <= largestFile &&
                    field.before.length <= largestField && field.after.length <= largestField;
    }
    const std::int64_t most = static_cast<std::int64_t>(largestField) * count;
    from.good = from.good && item.sizeAfter >= 0 && item.sizeAfter <= largestFile;
    const std::int64_t change = from.good ? item.sizeAfter - item.state.size : 0;
    from.good = from.good && change <= most && -change <= most;
}

void readDeletion(Decoder& from, UndoItem& item) {
    item.otherName = from.text();
    const auto count = from.number<std::uint32_t>();
    for (std::uint32_t i = 0; i < count && from.good; ++i) {
        Attribute& attribute = item.attributes.emplace_back();
        attribute.name = from.text();
        attribute.value = from.text();
        from.good = from.good && !attribute.name.empty() && isText(attribute.name);
    }
    item.content = from.take(from.number<std::uint64_t>());
    from.good = from.good && (item.otherName.empty() || isInside(item.otherName)) &&
                (item.state.kind == EntryState::plain || item.state.kind == EntryState::directory ||
                 (item.state.kind == EntryState::symbolic && !item.content.empty() && isText(item.content)));
}

UndoItem readItem(Decoder& from) {
    UndoItem item;
    item.kind = static_cast<UndoItem::Kind>(from.number<std::uint8_t>());
    item.file = from.text();
    item.state = readState(from);
    from.good = from.good && (isInside(item.file) || (item.kind == UndoItem::times && item.file.empty()));
    if (!from.good)
        return item;
    switch (item.kind) {
    case UndoItem::keys:
        readFields(from, item);
        break;
    case UndoItem::deletion:
        readDeletion(from, item);
        break;
    case UndoItem::made:
        item.checksum = from.number<std::uint32_t>();
        break;
    case UndoItem::making:
    case UndoItem::times:
    case UndoItem::beside:
        break;
    default:
        from.good = false;
    }
    return item;
}

} // namespace

std::string UndoHeader::encode() const {
    Encoder to;
    to.bytes = magic;
    to.number(length).number(finished).number(device).number(inode).number(time);
    to.number(changes).number(checksum);
    to.number(checksumOf(to.bytes));
    return to.bytes;
}

bool UndoHeader::decode(std::string_view bytes) {
    Decoder from(bytes.substr(0, size));
    const std::uint32_t own = bytes.size() < size ? 0 : checksumOf(bytes.substr(0, size - sizeof own));
    const std::string_view name = from.take(magic.size());
    length = from.number<std::uint64_t>();
    finished = from.number<std::uint64_t>();
    device = from.number<std::uint64_t>();
    inode = from.number<std::uint64_t>();
    time = from.number<std::int64_t>();
    changes = from.number<std::uint32_t>();
    checksum = from.number<std::uint32_t>();
    const auto recorded = from.number<std::uint32_t>();
    return from.good && name == magic && recorded == own && length >= size && finished >= size &&
           finished <= length;
}

std::string parseUndoFile(UndoFile& file) {
    const std::string_view bytes = file.bytes;
    if (bytes.substr(0, magic.size()) != magic)
        return "it is no undo file";
    if (!file.header.decode(bytes))
        return "it is damaged in its header";
    const std::uint64_t length = file.header.length;
    if (bytes.size() < length)
        return "it is damaged: its end is missing";
    const std::string_view body = bytes.substr(UndoHeader::size, length - UndoHeader::size);
    if (checksumOf(body) != file.header.checksum)
        return "it is damaged: its checksum is another";
    Decoder from(body);
    file.directory = from.text();
    file.program = from.text();
    while (from.good && !from.rest.empty()) {
        file.items.push_back(readItem(from));
        file.items.back().end = length - from.rest.size();
    }
    return from.good && isText(file.directory) ? "" : "it is damaged: its content can't be read";
}

std::string readUndoFile(const std::string& path, UndoFile& file) {
    file = UndoFile();
    file.path = path;
    if (!readContent(path, file.bytes))
        return "it can't be read (" + errorText(GetLastError()) + ")";
    return parseUndoFile(file);
}

bool readUndoHeader(const std::string& path, UndoHeader& header) {
    ByteStream file;
    std::string bytes(UndoHeader::size, '\0');
    if (!file.open(path.c_str(), OpenMode::read))
        return false;
    const bool whole = file.read(bytes.data(), bytes.size()) == bytes.size();
    SetLastError(file.readFailure());
    return whole && header.decode(bytes);
}

bool isAbout(const UndoFile& file, const std::string& databaseDirectory) {
    EntryState state;
    std::string full;
    if (!readEntry(databaseDirectory, OfLink::target, state) || !readFullPath(databaseDirectory, full))
        return false;
    SetLastError(ERROR_SUCCESS);
    return state.inode == file.header.inode && (state.device == file.header.device || full == file.directory);
}

std::uint32_t checksumOf(std::string_view bytes, std::uint32_t before) {
    return static_cast<std::uint32_t>(
        crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}
