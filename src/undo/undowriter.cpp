#include "undo/undowriter.h"

#include <algorithm>
#include <ctime>

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/letters.h"
#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "platform/system/text.h"
#include "undo/content.h"
#include "undo/place.h"

namespace {

// The moment, so that names stand in the order of time.
std::string newName(std::time_t now, int number) {
    std::tm parts = {};
    gmtime_r(&now, &parts);
    char text[40];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &parts);
    return std::string(text) + Text<30>().format("-%03d.undo", number).c_str();
}

void encodeState(Encoder& to, const EntryState& state) {
    to.number(static_cast<std::uint8_t>(state.kind)).number(state.permissions).number(state.owner);
    to.number(state.group).number(state.inode).number(state.names).number(state.size);
    for (const Moment& moment : {state.read, state.changed})
        to.number(moment.seconds).number(moment.nanoseconds);
}

} // namespace

UndoWriter::UndoWriter(const std::string& databaseDirectory, const std::string& path)
    : root_(databaseDirectory), wanted_(path.empty() ? path : resolvePath(path)) {}

UndoWriter::UndoWriter(const UndoFile& file, const std::string& databaseDirectory)
    : root_(databaseDirectory), path_(file.path), header_(file.header), standing_(file.header) {
    for (const UndoItem& item : file.items)
        if (item.kind == UndoItem::making && item.end > header_.finished)
            makings_.push_back(item.file);
}

bool UndoWriter::failed(const std::string& what) {
    failure_ = what + " (" + errorText(GetLastError()) + ")";
    return false;
}

bool UndoWriter::begin() {
    if (!path_.empty() || !group_.bytes.empty())
        return true;
    EntryState state;
    std::string full;
    if (!readEntry(root_, OfLink::target, state) || !readFullPath(root_, full))
        return failed(root_ + " can't be read");
    root_ = full;
    header_.device = state.device;
    header_.inode = state.inode;
    header_.time = std::time(nullptr);
    group_.text(full).text("txinspect " TX_VERSION);
    return true;
}

void UndoWriter::expect(std::size_t keys) {
    constexpr std::size_t usualField = 80; // with two keys of 24 letters
    group_.bytes.reserve(keys * usualField);
}

bool UndoWriter::addItem(UndoItem::Kind kind, const std::string& name, const EntryState& state) {
    group_.number(static_cast<std::uint8_t>(kind)).text(name);
    encodeState(group_, state);
    return true;
}

bool UndoWriter::addKeys(const std::string& name, const std::vector<NewField>& fields, std::int64_t size) {
    EntryState state;
    if (!begin())
        return false;
    if (!readEntry(under(name), OfLink::target, state) || !readContent(under(name), content_))
        return failed(under(name) + " can't be read");
    std::int64_t grown = state.size;
    for (const NewField& field : fields) {
        if (bytesAt(content_, field.offset, field.before.size()) != field.before) {
            failure_ = under(name) + " has been changed by another program since it was read";
            return false;
        }
        grown = std::max(grown, field.offset + static_cast<std::int64_t>(field.after.size()));
    }
    addItem(UndoItem::keys, name, state);
    group_.number(checksumOf(content_)).number(size < 0 ? grown : size);
    group_.number(static_cast<std::uint32_t>(fields.size()));
    for (const NewField& field : fields)
        group_.number(field.record).number(field.offset).field(field.before).field(field.after);
    changes_ += static_cast<std::uint32_t>(fields.size());
    return true;
}

bool UndoWriter::addParent(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    const std::string parent = slash == std::string::npos ? "" : name.substr(0, slash);
    EntryState state;
    if (parents_.count(parent) != 0)
        return true;
    if (!readEntry(under(parent), OfLink::target, state))
        return failed(under(parent) + " can't be read");
    parents_.insert(parent);
    return addItem(UndoItem::times, parent, state);
}

// Another name of the same file in the directory or below it; found stays empty where there is none.
bool UndoWriter::findOtherName(const std::string& directory, const std::string& name, const EntryState& state,
                               std::string& found) const {
    if (state.kind != EntryState::plain || state.names < 2)
        return true;
    for (const std::string& entry : directoryEntries(under(directory))) {
        const std::string path = directory.empty() ? entry : directory + "/" + entry;
        EntryState other;
        if (!readEntry(under(path), OfLink::itself, other))
            return false;
        if (other.kind == EntryState::plain && other.inode == state.inode && path != name)
            found = path;
        else if (other.kind == EntryState::directory && !findOtherName(path, name, state, found))
            return false;
        if (!found.empty())
            break;
    }
    return true;
}

// A name that differs only in case and stands there already is no obstacle when the deletion is taken back.
void UndoWriter::addTwins(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    const std::string parent = slash == std::string::npos ? "" : name.substr(0, slash);
    const auto [listing, isNew] = listings_.try_emplace(parent);
    if (isNew)
        listing->second = directoryEntries(under(parent));
    for (const std::string& entry : listing->second) {
        const std::string path = parent.empty() ? entry : parent + "/" + entry;
        if (path != name && equalIgnoringCase(path, name))
            addItem(UndoItem::beside, path, EntryState());
    }
}

bool UndoWriter::addDeletion(const std::string& name) {
    EntryState state;
    std::string content, other;
    std::vector<Attribute> attributes;
    if (!begin())
        return false;
    if (!readEntry(under(name), OfLink::itself, state) || !readAttributes(under(name), attributes) ||
        state.kind == EntryState::missing || !readOwnContent(under(name), state, content) ||
        !findOtherName("", name, state, other))
        return failed(under(name) + " can't be read");
    if (!addParent(name))
        return false;
    addTwins(name);
    addItem(UndoItem::deletion, name, state);
    group_.text(other).number(static_cast<std::uint32_t>(attributes.size()));
    for (const auto& [attribute, value] : attributes)
        group_.text(attribute).text(value);
    group_.number(static_cast<std::uint64_t>(content.size()));
    group_.bytes += content;
    ++changes_;
    return true;
}

bool UndoWriter::addMaking(const std::string& name) {
    if (!begin() || !addParent(name))
        return false;
    addItem(UndoItem::making, name, EntryState());
    makings_.push_back(name);
    ++changes_;
    return true;
}

void UndoWriter::drop() {
    group_.bytes.clear();
    listings_.clear();
    changes_ = 0;
    parents_.clear(); // a directory that is told twice is no harm, the first counts
    makings_.clear();
}

bool UndoWriter::commit() {
    if (changes_ == 0) {
        drop();
        return true;
    }
    header_.length = std::max<std::uint64_t>(header_.length, UndoHeader::size) + group_.bytes.size();
    header_.finished = std::max<std::uint64_t>(header_.finished, UndoHeader::size);
    header_.checksum = checksumOf(group_.bytes, header_.checksum);
    header_.changes += changes_;
    if (path_.empty() ? makeFile() : append()) {
        standing_ = header_;
        group_.bytes.clear();
        listings_.clear();
        changes_ = 0;
        return true;
    }
    header_ = standing_;
    drop();
    return false;
}

bool UndoWriter::makeFile() {
    const PrivateFiles guard;
    const std::string directory = undoDirectory();
    const std::size_t slash = wanted_.rfind('/');
    std::string full;
    if (!wanted_.empty() &&
        !readFullPath(slash == std::string::npos ? "." : wanted_.substr(0, slash + 1), full))
        return failed("the directory of " + wanted_ + " can't be entered");
    if (!wanted_.empty())
        full += "/" + wanted_.substr(slash + 1);
    if (directory.empty())
        failure_ = "there is no directory for undo files: set XDG_STATE_HOME or HOME";
    else if (!makePrivateDirectories(directory))
        failed("the directory " + directory + " can't be made");
    else if (makeIn(directory, full))
        return true;
    // Elsewhere it serves a restore, though no later run finds it by itself.
    unfound_ = failure_;
    return !full.empty() && (makeUnder(full, "") || failed("the undo file " + full + " can't be written"));
}

bool UndoWriter::makeIn(const std::string& directory, const std::string& full) {
    constexpr int tries = 1000; // of one second
    for (int number = 0; number < tries; ++number) {
        const std::string name = directory + "/" + newName(header_.time, number);
        if (full.empty() ? makeUnder(name, "") : makeUnder(full, name))
            return true;
        if (GetLastError() != ERROR_ALREADY_EXISTS || pathExists(full))
            break;
    }
    return failed("the undo file in " + directory + " can't be written");
}

// A file elsewhere is found by its link, should the run be interrupted.
bool UndoWriter::makeUnder(const std::string& path, const std::string& link) {
    if (!link.empty() && !makeLink(link, path))
        return false;
    ByteStream file;
    const std::string header = header_.encode();
    const bool made = file.open(path.c_str(), OpenMode::create) &&
                      file.write(header.data(), header.size()) == header.size() &&
                      file.write(group_.bytes.data(), group_.bytes.size()) == group_.bytes.size() &&
                      file.close() && syncDirectoryOf(path.c_str()) &&
                      (link.empty() || syncDirectoryOf(link.c_str()));
    if (made) {
        path_ = path;
        return true;
    }
    // What was refused must not be found as interrupted.
    const std::uint32_t reason = GetLastError();
    if (reason != ERROR_ALREADY_EXISTS)
        removeFile(path.c_str());
    if (!link.empty())
        removeFile(link.c_str());
    SetLastError(reason);
    return false;
}

// The header counts the new bytes only once they are on the disk.
bool UndoWriter::append() {
    ByteStream file;
    const std::string header = header_.encode();
    const auto end = static_cast<std::int64_t>(header_.length - group_.bytes.size());
    const bool done =
        file.open(path_.c_str(), OpenMode::update) &&
        (group_.bytes.empty() ||
         (file.seek(end) && file.write(group_.bytes.data(), group_.bytes.size()) > 0 && file.sync())) &&
        file.seek(0) && file.write(header.data(), header.size()) > 0 && file.sync() && file.close();
    if (done)
        return true;
    failed("the undo file " + path_ + " can't be written");
    putBack();
    return false;
}

// What was refused must not be found as interrupted.
void UndoWriter::putBack() const {
    ByteStream file;
    const std::string header = standing_.encode();
    if (file.open(path_.c_str(), OpenMode::update) && file.write(header.data(), header.size()) > 0)
        file.sync();
    file.close();
}

bool UndoWriter::addMade(const std::string& name) {
    EntryState state;
    std::string content;
    if (!readEntry(under(name), OfLink::itself, state) || !readOwnContent(under(name), state, content))
        return failed(under(name) + " can't be read");
    if (state.kind == EntryState::missing || state.kind == EntryState::other)
        return true; // it was not made
    addItem(UndoItem::made, name, state);
    group_.number(checksumOf(content));
    return true;
}

bool UndoWriter::finish() {
    for (const std::string& name : makings_)
        if (!addMade(name))
            return false;
    header_.length += group_.bytes.size();
    header_.finished = header_.length;
    header_.checksum = checksumOf(group_.bytes, header_.checksum);
    const bool done = append();
    (done ? standing_ : header_) = done ? header_ : standing_;
    group_.bytes.clear();
    makings_.clear();
    return done;
}
