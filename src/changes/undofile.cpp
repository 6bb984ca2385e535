#include "changes/undofile.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "changes/frames.h"
#include "platform/system/user.h"

namespace {

constexpr std::string_view magic("TX-UNDO-v2.0\0\0\0\0", 16);
constexpr std::string_view earlier("TX-UNDO-v1.0");
constexpr std::int64_t largestFile = std::int64_t{1} << 56;
constexpr std::size_t largestField = 69;

void encodeState(Encoder& to, const EntryState& state) {
    to.number(static_cast<std::uint8_t>(state.kind)).number(state.permissions).number(state.owner);
    to.number(state.group).number(state.inode).number(state.names).number(state.size);
    for (const Moment& moment : {state.read, state.changed})
        to.number(moment.seconds).number(moment.nanoseconds);
}

Moment decodeMoment(Decoder& from) {
    Moment moment;
    moment.seconds = from.number<std::int64_t>();
    moment.nanoseconds = from.number<std::uint32_t>();
    from.good = from.good && moment.nanoseconds < 1000000000;
    return moment;
}

EntryState decodeState(Decoder& from) {
    EntryState state;
    state.kind = static_cast<EntryState::Kind>(from.number<std::uint8_t>());
    state.permissions = from.number<std::uint32_t>();
    state.owner = from.number<std::uint32_t>();
    state.group = from.number<std::uint32_t>();
    state.inode = from.number<std::uint64_t>();
    state.names = from.number<std::uint64_t>();
    state.size = from.number<std::int64_t>();
    state.read = decodeMoment(from);
    state.changed = decodeMoment(from);
    from.good = from.good && state.kind <= EntryState::symbolic && state.permissions <= 07777 &&
                state.size >= 0 && state.size <= largestFile;
    return state;
}

void encodeOthers(Encoder& to, const Change& change) {
    to.text(change.othername).number(static_cast<std::uint32_t>(change.attributes.size()));
    for (const auto& [name, value] : change.attributes)
        to.text(name).text(value);
    to.number(change.content.size);
}

std::string encode(const Change& change) {
    Encoder to;
    to.text(change.file).number(static_cast<std::uint8_t>(change.given));
    encodeState(to, change.state);
    if (change.kind == Change::keys) {
        for (const Moment& moment : {change.read, change.changed})
            to.number(moment.seconds).number(moment.nanoseconds);
        to.number(change.checksum).number(change.sizeafter).number(change.fieldcount);
        to.bytes += change.fields;
    } else {
        encodeOthers(to, change);
    }
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
                (change.state.kind == EntryState::plain || change.state.kind == EntryState::directory ||
                 (change.state.kind == EntryState::symbolic && change.content.size > 0));
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
        return failure.number == ERROR_INVALID_DATA ? damaged : "it can't be read (" + failure.text() + ")";
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
std::string whynotmine(const File& file) {
    EntryState state;
    if (const Failure failure = file.entry(state))
        return "it can't be read (" + failure.text() + ")";
    if (state.owner != currentuser())
        return "it belongs to " + username(state.owner) +
               ", and only one's own is trusted: let that user restore or finish it";
    constexpr std::uint32_t othersMayWrite = 022;
    return (state.permissions & othersMayWrite) == 0
               ? ""
               : "others than its owner may write it, so it can't be trusted (chmod go-w makes it private)";
}

std::string unread(Failure failure) {
    return "it can't be read (" + failure.text() + ")";
}

std::string openHead(Tree& tree, const std::string& name, UndoFile& undo) {
    undo = UndoFile();
    File file;
    std::string bytes;
    Failure failure = tree.openToRead(name, file, Links::refused);
    if (!failure)
        failure = file.read(0, UndoHeader::size, bytes);
    if (failure)
        return unread(failure);
    if (std::string why = whynotmine(file); !why.empty())
        return why;
    if (bytes.substr(0, earlier.size()) == earlier)
        return "it was written by an earlier version of this program, which alone can restore it";
    if (bytes.substr(0, magic.size()) != magic)
        return "it is no undo file";
    if (!undo.header.decode(bytes))
        return "it is damaged in its header";
    undo.file = std::make_shared<const File>(std::move(file));
    FileState state;
    if (undo.file->state(state) || state.size < static_cast<std::int64_t>(undo.header.length))
        return "it is damaged: its end is missing";
    return Reading(undo).head();
}

std::string openHead(const std::string& path, UndoFile& undo) {
    Tree tree;
    std::string name;
    const Failure failure = tree.openDirectoryOf(path, name);
    return failure ? unread(failure) : openHead(tree, name, undo);
}

// One that stands elsewhere is found by a link.
std::string openListed(Tree& tree, const std::string& name, UndoFile& undo) {
    std::string target;
    return tree.readLink(name, target) ? openHead(tree, name, undo) : openHead(target, undo);
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
    if (bytes.size() < size)
        return false;
    Decoder from(bytes.substr(0, size));
    from.take(magic.size());
    for (std::uint64_t* value : {&length, &finished, &number})
        *value = from.number<std::uint64_t>();
    time = from.number<std::int64_t>();
    for (std::uint32_t* value : {&keys, &deletions, &makings, &restoredfrom, &isrestore})
        *value = from.number<std::uint32_t>();
    Decoder last(bytes.substr(size - sizeof(std::uint32_t)));
    return last.number<std::uint32_t>() == checksumOf(bytes.substr(0, size - sizeof(std::uint32_t))) &&
           length >= size && length <= std::uint64_t{INT64_MAX} && finished >= size && finished <= length;
}

std::string readundohead(Tree& tree, const std::string& name, UndoFile& undo) {
    return openListed(tree, name, undo);
}

std::string readundofile(Tree& tree, const std::string& name, UndoFile& undo) {
    std::string failure = openListed(tree, name, undo);
    return failure.empty() ? readRest(undo) : failure;
}

std::string readundofile(const std::string& path, UndoFile& undo) {
    Tree tree;
    std::string name;
    const Failure unopened = tree.openDirectoryOf(path, name);
    std::string failure = unopened ? unread(unopened) : openListed(tree, name, undo);
    return failure.empty() ? readRest(undo) : failure;
}

namespace {

// The content of a file that is to go, which must still be the one that was looked at.
std::string takecontent(Tree& database, Change& change) {
    Failure failure = database.readAttributes(change.file, change.attributes);
    if (!failure && change.state.kind == EntryState::plain) {
        auto file = std::make_shared<File>();
        FileState now;
        failure = database.openToRead(change.file, *file, Links::refused);
        if (!failure)
            failure = file->state(now);
        if (!failure && !now.isUnchanged(change.judged))
            failure = {ERROR_FILE_INVALID};
        change.content = contentOf(std::shared_ptr<const File>(std::move(file)), now.size);
    } else if (!failure && change.state.kind == EntryState::symbolic) {
        std::string target;
        failure = database.readLink(change.file, target);
        change.content = contentOf(std::move(target));
    }
    return failure ? change.file + " can't be read (" + failure.text() + ")" : "";
}

Failure writepieces(FrameWriter& frames, const Change& change) {
    std::int64_t reached = 0;
    Failure failure = change.content.pieces([&](std::int64_t offset, std::string_view bytes) {
        reached = offset + static_cast<std::int64_t>(bytes.size());
        Encoder to;
        to.number(offset);
        to.bytes += bytes;
        return frames.add(FrameKind::piece, to.bytes);
    });
    if (!failure && reached < change.content.size) // it ends in a hole
        failure = frames.add(FrameKind::piece, Encoder().number(change.content.size).bytes);
    return failure;
}

// Failures of the database have a text of their own; those of the undo file are the writer's.
std::string writechange(FrameWriter& frames, Tree& database, Change& change) {
    if (!isInside(change.file)) // nobody could restore it
        return "'" + change.file + "' is no name that can be kept";
    if (change.kind == Change::deletion)
        if (std::string why = takecontent(database, change); !why.empty())
            return why;
    Failure failure = frames.add(static_cast<FrameKind>(change.kind), encode(change));
    if (!failure && change.kind != Change::keys)
        failure = writepieces(frames, change);
    if (change.kind == Change::deletion)
        change.content = FileContent(); // closes the file
    return failure ? "it can't be written (" + failure.text() + ")" : "";
}

} // namespace

Failure writehead(const File& undo, std::int64_t& position, const std::string& directory) {
    FrameWriter frames(undo, position);
    const Failure failure =
        frames.add(FrameKind::head, Encoder().text(directory).text("txinspect " TX_VERSION).bytes);
    return failure ? failure : frames.flush(position);
}

std::string writegroup(const File& undo, std::int64_t& position, Tree& database, std::vector<Change>& group,
                       const std::vector<DirectoryTimes>& directories) {
    FrameWriter frames(undo, position);
    Failure failure;
    for (auto directory = directories.begin(); directory != directories.end() && !failure; ++directory) {
        Encoder to;
        to.text(directory->name);
        encodeState(to, directory->state);
        failure = frames.add(FrameKind::times, to.bytes);
    }
    for (auto change = group.begin(); change != group.end() && !failure; ++change)
        if (std::string why = writechange(frames, database, *change); !why.empty())
            return why;
    if (!failure)
        failure = frames.add(FrameKind::groupend, "");
    if (!failure)
        failure = frames.flush(position);
    return failure ? "it can't be written (" + failure.text() + ")" : "";
}
