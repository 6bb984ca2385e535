#include "changes/undofile.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "changes/frames.h"
#include "platform/system/person.h"

namespace {

constexpr std::string_view magic("TX-UNDO-v2.0\0\0\0\0", 16);
constexpr std::string_view earlier("TX-UNDO-v1.0");
constexpr std::int64_t largestFile = std::int64_t{1} << 56;
constexpr std::size_t largestField = 69;

void encodeTimes(Encoder& to, const Moment& read, const Moment& changed) {
    for (const Moment& moment : {read, changed})
        to.number(moment.seconds).number(moment.nanoseconds);
}

void encodeState(Encoder& to, const FileState& state) {
    to.number(static_cast<std::uint8_t>(state.kind)).number(state.permissions).number(state.owner);
    to.number(state.group).number(state.identity.inode).number(state.names).number(state.size);
    encodeTimes(to, state.read, state.changed);
}

Moment decodeMoment(Decoder& from) {
    Moment moment;
    moment.seconds = from.number<std::int64_t>();
    moment.nanoseconds = from.number<std::uint32_t>();
    from.good = from.good && moment.nanoseconds < 1000000000;
    return moment;
}

FileState decodeState(Decoder& from) {
    FileState state;
    state.kind = static_cast<FileState::Kind>(from.number<std::uint8_t>());
    state.permissions = from.number<std::uint32_t>();
    state.owner = from.number<std::uint32_t>();
    state.group = from.number<std::uint32_t>();
    state.identity.inode = from.number<std::uint64_t>();
    state.names = from.number<std::uint64_t>();
    state.size = from.number<std::int64_t>();
    state.read = decodeMoment(from);
    state.changed = decodeMoment(from);
    from.good = from.good && state.kind <= FileState::symbolic && state.permissions <= 07777 &&
                state.size >= 0 && state.size <= largestFile;
    return state;
}

std::string encode(const Change& change) {
    Encoder to;
    to.text(change.file).number(static_cast<std::uint8_t>(change.given));
    encodeState(to, change.state);
    if (change.kind == Change::keys) {
        encodeTimes(to, change.read, change.changed);
        to.number(change.checksum).number(change.sizeafter).number(change.fieldcount);
        to.bytes += change.fields;
        return std::move(to.bytes);
    }
    to.text(change.othername).number(static_cast<std::uint32_t>(change.attributes.size()));
    for (const auto& [name, value] : change.attributes)
        to.text(name).text(value);
    to.number(change.content.size);
    return std::move(to.bytes);
}

// A name leads to nothing outside of the database directory.
bool isInside(std::string_view name) {
    if (name.find('\0') != std::string_view::npos)
        return false;
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t end = std::min(name.find('/', at), name.size());
        const std::string_view part = name.substr(at, end - at);
        if (part.empty() || part == "." || part == ".." || part.find('\\') != std::string_view::npos)
            return false;
        at = end + 1;
    }
    return true;
}

bool isText(std::string_view text) {
    return text.find('\0') == std::string_view::npos;
}

void decodeFields(Decoder& from, Change& change) {
    change.read = decodeMoment(from);
    change.changed = decodeMoment(from);
    change.checksum = from.number<std::uint32_t>();
    change.sizeafter = from.number<std::int64_t>();
    change.fieldcount = from.number<std::uint32_t>();
    change.fields = from.rest;
    for (std::uint32_t i = 0; i < change.fieldcount && from.good; ++i) {
        const KeyField field = readfield(from);
        from.good = from.good && field.offset >= 0 && field.offset <= largestFile &&
                    field.before.length <= largestField && field.after.length <= largestField;
    }
    const auto most = static_cast<std::int64_t>(largestField * std::uint64_t{change.fieldcount});
    from.good = from.good && change.sizeafter >= 0 && change.sizeafter <= largestFile;
    const std::int64_t grown = from.good ? change.sizeafter - change.state.size : 0;
    from.good = from.good && grown <= most && -grown <= most;
}

void decodeOthers(Decoder& from, Change& change) {
    change.othername = from.text();
    const auto count = from.number<std::uint32_t>();
    for (std::uint32_t i = 0; i < count && from.good; ++i) {
        Attribute& attribute = change.attributes.emplace_back();
        attribute.name = from.text();
        attribute.value = from.text();
        from.good = from.good && !attribute.name.empty() && isText(attribute.name);
    }
    change.content.size = from.number<std::int64_t>();
    from.good = from.good && change.content.size >= 0 && change.content.size <= largestFile &&
                (change.othername.empty() || isInside(change.othername)) &&
                (change.state.kind == FileState::plain || change.state.kind == FileState::directory ||
                 (change.state.kind == FileState::symbolic && change.content.size > 0));
}

std::optional<Change> decodeChange(FrameKind kind, std::string_view bytes) {
    Decoder from(bytes);
    Change change;
    change.kind = static_cast<Change::Kind>(kind);
    change.file = from.text();
    change.given = from.number<std::uint8_t>() == 1;
    change.state = decodeState(from);
    from.good = from.good && isInside(change.file);
    if (from.good)
        change.kind == Change::keys ? decodeFields(from, change) : decodeOthers(from, change);
    return from.good && from.rest.empty() ? std::optional(std::move(change)) : std::nullopt;
}

constexpr const char* damaged = "it is damaged";

std::string unread(Failure failure) {
    return "it can't be read (" + failure.text() + ")";
}

// Reads frame by frame, and tests each.
class Reading {
public:
    explicit Reading(UndoFile& undo)
        : undo_(undo), frames_(*undo.file, UndoHeader::size, undo.header.length) {}

    std::string head() {
        Frame frame;
        if (std::string failure = next(frame); !failure.empty())
            return failure;
        Decoder from(frame.bytes);
        undo_.directory = from.text();
        undo_.program = from.text();
        return frame.kind == FrameKind::head && from.good && isText(undo_.directory) ? "" : damaged;
    }

    std::string groups() {
        while (!frames_.atend()) {
            Frame frame;
            if (std::string failure = next(frame); !failure.empty() || !(failure = take(frame)).empty())
                return failure;
        }
        return wanted_ == 0 && !open_ ? "" : damaged;
    }

private:
    std::string next(Frame& frame) {
        const Failure failure = frames_.next(frame);
        if (!failure)
            return "";
        return failure.number == ERROR_INVALID_DATA ? damaged : unread(failure);
    }

    std::string take(const Frame& frame) {
        if (frame.kind == FrameKind::piece)
            return takePiece(frame);
        if (wanted_ != 0) // a content goes on until its last piece
            return damaged;
        if (!std::exchange(open_, true))
            undo_.groups.emplace_back();
        UndoGroup& group = undo_.groups.back();
        if (frame.kind == FrameKind::groupend) {
            open_ = false;
            group.end = frame.end;
            return "";
        }
        return frame.kind == FrameKind::times ? takeTimes(frame, group) : takeChange(frame, group);
    }

    static std::string takeTimes(const Frame& frame, UndoGroup& group) {
        Decoder from(frame.bytes);
        DirectoryTimes times{std::string(from.text()), decodeState(from)};
        if (!from.good || (!times.name.empty() && !isInside(times.name)))
            return damaged;
        group.directories.push_back(std::move(times));
        return "";
    }

    std::string takeChange(const Frame& frame, UndoGroup& group) {
        std::optional<Change> change = decodeChange(frame.kind, frame.bytes);
        if (!change)
            return damaged;
        if (change->kind != Change::keys && change->content.size > 0) {
            wanted_ = change->content.size;
            reached_ = 0;
            change->content.pieces = [file = undo_.file, start = frame.end,
                                      end = undo_.header.length](const FileContent::Visit& visit) {
                return visitpieces(*file, start, end, visit);
            };
        }
        group.changes.push_back(std::move(*change));
        return "";
    }

    // The last piece ends where the content does, also where that ends in a hole.
    std::string takePiece(const Frame& frame) {
        Decoder from(frame.bytes);
        const auto offset = from.number<std::int64_t>();
        const auto size = static_cast<std::int64_t>(from.rest.size());
        if (!from.good || offset < reached_ || offset > wanted_ || size > wanted_ - offset)
            return damaged;
        reached_ = offset + size;
        if (reached_ == wanted_)
            wanted_ = 0;
        return "";
    }

    UndoFile& undo_;
    Frames frames_;
    bool open_ = false; // a group has begun and not ended
    std::int64_t wanted_ = 0, reached_ = 0;
};

// What belongs to another user, or may be written by one, could make the program write anything.
std::string whynotmine(const FileState& state) {
    if (state.owner != currentuser())
        return "it belongs to " + username(state.owner) +
               ", and only one's own is trusted: let that user restore or finish it";
    constexpr std::uint32_t othersMayWrite = 022;
    return (state.permissions & othersMayWrite) == 0
               ? ""
               : "others than its owner may write it, so it can't be trusted (chmod go-w makes it private)";
}

std::string readHead(const std::shared_ptr<const File>& file, UndoFile& undo) {
    std::string bytes;
    if (const Failure failure = file->read(0, UndoHeader::size, bytes))
        return unread(failure);
    if (std::string why = whynotmine(file->opened()); !why.empty())
        return why;
    if (bytes.substr(0, earlier.size()) == earlier)
        return "it was written by an earlier version of this program, which alone can restore it";
    if (bytes.substr(0, magic.size()) != magic)
        return "it is no undo file";
    if (!undo.header.decode(bytes))
        return "it is damaged in its header";
    undo.file = file;
    if (file->opened().size < static_cast<std::int64_t>(undo.header.length))
        return "it is damaged: its end is missing";
    return Reading(undo).head();
}

std::string readRest(UndoFile& undo) {
    Reading reading(undo);
    std::string failure = reading.head();
    return failure.empty() ? reading.groups() : failure;
}

} // namespace

std::string UndoHeader::encode() const {
    Encoder to{std::string(magic)};
    to.number(length).number(finished).number(number).number(time);
    to.number(keys).number(deletions).number(makings).number(restoredfrom).number(isrestore);
    to.bytes.resize(size - sizeof(std::uint32_t));
    to.number(checksumOf(to.bytes));
    return to.bytes;
}

bool UndoHeader::decode(std::string_view bytes) {
    Decoder from(bytes.substr(0, size));
    from.take(magic.size());
    for (std::uint64_t* value : {&length, &finished, &number})
        *value = from.number<std::uint64_t>();
    time = from.number<std::int64_t>();
    for (std::uint32_t* value : {&keys, &deletions, &makings, &restoredfrom, &isrestore})
        *value = from.number<std::uint32_t>();
    return bytes.substr(0, size) == encode() && length >= size && length <= std::uint64_t{INT64_MAX} &&
           finished >= size && finished <= length;
}

Failure openundofile(Tree& tree, const std::string& name, bool towrite, File& file) {
    Tree elsewhere;
    std::string target, there;
    if (tree.readLink(name, target))
        return towrite ? tree.openToWrite(name, file, Links::unfollowed)
                       : tree.openToRead(name, file, Links::unfollowed);
    const Failure failure = elsewhere.openDirectoryOf(target, there);
    if (failure)
        return failure;
    return towrite ? elsewhere.openToWrite(there, file, Links::unfollowed)
                   : elsewhere.openToRead(there, file, Links::unfollowed);
}

std::string readundohead(Tree& tree, const std::string& name, UndoFile& undo) {
    const auto file = std::make_shared<File>();
    undo = UndoFile();
    const Failure failure = openundofile(tree, name, false, *file);
    return failure ? unread(failure) : readHead(file, undo);
}

std::string readundofile(Tree& tree, const std::string& name, UndoFile& undo) {
    std::string failure = readundohead(tree, name, undo);
    return failure.empty() ? readRest(undo) : failure;
}

std::string readundofile(const std::string& path, UndoFile& undo) {
    Tree tree;
    std::string name;
    const Failure failure = tree.openDirectoryOf(path, name);
    return failure ? unread(failure) : readundofile(tree, name, undo);
}

namespace {

std::string unwritten(Failure failure) {
    return failure ? "it can't be written (" + failure.text() + ")" : "";
}

// The content of what is to go, which must still be what was looked at.
Failure takecontent(Tree& database, Change& change) {
    const auto entry = std::make_shared<File>();
    const bool plain = change.state.kind == FileState::plain;
    Failure failure = database.openEntry(change.file, *entry);
    if (!failure && plain && !entry->opened().isUnchanged(change.judged))
        failure = {ERROR_FILE_INVALID};
    failure = failure ? failure : entry->attributes(change.attributes);
    std::string target;
    if (!failure && change.state.kind == FileState::symbolic)
        failure = database.readLink(change.file, target);
    change.content = plain ? contentOf(entry, entry->opened().size) : contentOf(std::move(target));
    return failure;
}

Failure writepieces(FrameWriter& frames, const Change& change) {
    std::int64_t reached = 0;
    const Failure failure = change.content.pieces([&](std::int64_t offset, std::string_view bytes) {
        reached = offset + static_cast<std::int64_t>(bytes.size());
        Encoder to;
        to.number(offset);
        to.bytes += bytes;
        frames.add(FrameKind::piece, to.bytes);
        return frames.failure();
    });
    if (reached < change.content.size) // it ends in a hole
        frames.add(FrameKind::piece, Encoder().number(change.content.size).bytes);
    return failure;
}

// Why the database does not give it; what the undo file does not take its end tells.
std::string writechange(FrameWriter& frames, Tree& database, Change& change) {
    if (!isInside(change.file)) // nobody could restore it
        return "'" + change.file + "' is no name that can be kept";
    Failure failure = change.kind == Change::deletion ? takecontent(database, change) : Failure();
    if (!failure)
        frames.add(static_cast<FrameKind>(change.kind), encode(change));
    if (!failure && change.kind != Change::keys)
        failure = writepieces(frames, change);
    if (change.kind == Change::deletion)
        change.content = FileContent(); // closes the file
    return failure && !frames.failure() ? change.file + " can't be read (" + failure.text() + ")" : "";
}

} // namespace

Failure writehead(const File& undo, std::int64_t& position, const std::string& directory) {
    FrameWriter frames(undo, position);
    frames.add(FrameKind::head, Encoder().text(directory).text("txinspect " TX_VERSION).bytes);
    return frames.end(position);
}

std::string writegroup(const File& undo, std::int64_t& position, Tree& database, std::vector<Change>& group,
                       const std::vector<DirectoryTimes>& directories) {
    FrameWriter frames(undo, position);
    for (const DirectoryTimes& directory : directories) {
        Encoder to;
        to.text(directory.name);
        encodeState(to, directory.state);
        frames.add(FrameKind::times, to.bytes);
    }
    for (Change& change : group)
        if (std::string why = writechange(frames, database, change); !why.empty())
            return why;
    frames.add(FrameKind::groupend, "");
    return unwritten(frames.end(position));
}
