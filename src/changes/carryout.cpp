#include "changes/carryout.h"

#include <algorithm>
#include <map>

#include "files/binfile.h"

namespace {

constexpr std::size_t fieldsize = 69; // of a key field that is written

// Reads fields of a file with few calls where they ascend.
class FieldReader {
public:
    explicit FieldReader(const File& file) : file_(file) {}

    // The bytes at an offset, fewer where the file ends.
    Failure at(std::int64_t offset, std::size_t count, std::string_view& bytes) {
        const std::int64_t end = start_ + static_cast<std::int64_t>(piece_.size());
        if (offset < start_ || offset + static_cast<std::int64_t>(count) > end) {
            start_ = offset;
            if (const Failure failure = file_.read(offset, pieceSize, piece_))
                return failure;
        }
        bytes = std::string_view(piece_).substr(static_cast<std::size_t>(offset - start_), count);
        return {};
    }

private:
    static constexpr std::size_t pieceSize = 65536;
    const File& file_;
    std::string piece_;
    std::int64_t start_ = 0;
};

std::size_t widthOf(const KeyField& field) {
    return std::max(field.before.length, field.after.length);
}

// Behind the end of a file zeros are taken to stand.
bool isMix(std::string_view found, const std::string& before, const std::string& after) {
    const auto at = [](std::string_view bytes, std::size_t i) { return i < bytes.size() ? bytes[i] : '\0'; };
    for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i)
        if (at(found, i) != at(before, i) && at(found, i) != at(after, i))
            return false;
    return true;
}

Failure readparts(const File& file, Change& change) {
    FieldReader reader(file);
    Failure failure;
    change.parts.clear();
    change.parts.reserve(change.fieldcount);
    foreachfield(change, [&](const KeyField& field) {
        std::string_view found;
        if (!failure)
            failure = reader.at(field.offset, widthOf(field), found);
        change.parts.push_back(standingof(found, field));
    });
    return failure;
}

Failure lookatkeys(Tree& tree, Change& change) {
    File file;
    Entry entry;
    Failure failure = lookexactly(tree, change.file, entry);
    if (!failure && entry.state.kind == EntryState::missing)
        failure = {ERROR_FILE_NOT_FOUND};
    if (!failure)
        failure = tree.openToWrite(change.file, file);
    if (!failure)
        failure = file.state(change.judged);
    return failure ? failure : readparts(file, change);
}

Failure comparewith(Tree& tree, const Change& change, const Entry& entry, Likeness& likeness) {
    likeness = Likeness::other;
    if (entry.state.kind != change.state.kind)
        return {};
    if (entry.state.kind == EntryState::plain) {
        File file;
        const Failure failure = tree.openToRead(change.file, file, Links::refused);
        return failure ? failure : compare(file, change.content, likeness);
    }
    std::string target, wanted;
    if (entry.state.kind == EntryState::symbolic) {
        if (const Failure failure = tree.readLink(change.file, target))
            return failure;
        [[maybe_unused]] const Failure none =
            change.content.pieces([&](std::int64_t, std::string_view bytes) {
                wanted += bytes;
                return Failure();
            });
    }
    if (target == wanted)
        likeness = Likeness::same;
    return {};
}

// Of an entry that comes or goes as a whole.
Failure lookatwhole(Tree& tree, Change& change) {
    Entry entry;
    Likeness likeness = Likeness::other;
    if (const Failure failure = lookexactly(tree, change.file, entry))
        return failure;
    change.judged = entry.file;
    const bool coming = change.kind == Change::making;
    if (entry.state.kind == EntryState::missing) {
        change.parts = {coming ? Standing::before : Standing::after};
        return {};
    }
    const Failure failure = comparewith(tree, change, entry, likeness);
    if (likeness == Likeness::same)
        change.parts = {coming ? Standing::after : Standing::before};
    else
        change.parts = {likeness == Likeness::begun && coming ? Standing::torn : Standing::other};
    return failure;
}

// Writes the fields until one fails.
Failure writefields(const File& file, const Change& change) {
    Failure failure;
    std::size_t part = 0;
    foreachfield(change, [&](const KeyField& field) {
        if (change.parts[part++] != Standing::other && !failure)
            failure = file.write(field.offset, field.after.whole());
    });
    return failure;
}

Failure applykeys(Tree& tree, Change& change) {
    File file;
    FileState now;
    Failure failure = tree.openToWrite(change.file, file);
    if (!failure)
        failure = file.state(now);
    if (failure || !now.isUnchanged(change.judged))
        return failure ? failure : Failure{ERROR_FILE_INVALID};
    change.begun = true;
    failure = writefields(file, change);
    if (!failure && change.sizeafter < change.state.size && now.size > change.sizeafter)
        failure = file.cut(change.sizeafter);
    if (!failure)
        failure = file.sync();
    if (!failure)
        failure = readparts(file, change);
    if (!failure && change.given && isdone(change)) {
        EntryState wanted;
        wanted.read = change.read;
        wanted.changed = change.changed;
        failure = tree.giveTimes(file, wanted);
    }
    if (!failure)
        failure = file.state(change.judged);
    const Failure closed = file.close();
    return failure ? failure : closed;
}

Failure makeplain(Tree& tree, Change& change) {
    NewFile made;
    Failure failure = tree.make(change.file, made, change.given ? Rights::ownerOnly : Rights::asDirectory);
    if (!failure)
        failure = writeContent(change.content, made.file);
    if (!failure && change.given)
        failure = tree.give(made.file, change.state, change.attributes);
    return failure ? failure : made.keep();
}

// One of which the first bytes stand there has its own name from the start.
Failure endplain(Tree& tree, Change& change) {
    File file;
    FileState now;
    Failure failure = tree.openToWrite(change.file, file, Links::refused);
    if (!failure)
        failure = file.state(now);
    if (!failure && !now.isUnchanged(change.judged))
        failure = {ERROR_FILE_INVALID};
    change.begun = !failure;
    if (!failure)
        failure = writeContent(change.content, file);
    if (!failure && change.given)
        failure = tree.give(file, change.state, change.attributes);
    return failure ? failure : file.sync();
}

Failure makelink(Tree& tree, const Change& change) {
    std::string target;
    const Failure failure = change.content.pieces([&](std::int64_t, std::string_view bytes) {
        target += bytes;
        return Failure();
    });
    return failure ? failure : tree.makeLink(change.file, target);
}

Failure make(Tree& tree, Change& change) {
    const bool plain = change.state.kind == EntryState::plain;
    if (change.parts[0] != Standing::before)
        return plain && change.othername.empty() ? endplain(tree, change) : Failure();
    if (change.state.kind == EntryState::directory)
        return tree.makeDirectory(change.file);
    if (change.state.kind == EntryState::symbolic)
        return makelink(tree, change);
    return change.othername.empty() ? makeplain(tree, change) : tree.addName(change.file, change.othername);
}

Failure applymaking(Tree& tree, Change& change) {
    Failure failure = make(tree, change);
    if (!failure && change.given && change.state.kind != EntryState::plain) // which got it while it was open
        failure = tree.give(change.file, change.state, change.attributes);
    if (!failure)
        failure = lookatwhole(tree, change);
    return failure || change.parts[0] != Standing::other ? failure : Failure{ERROR_FILE_INVALID};
}

Failure applydeletion(Tree& tree, Change& change) {
    if (change.parts[0] == Standing::after)
        return {};
    const Failure failure = change.state.kind == EntryState::directory
                                ? tree.removeDirectory(change.file)
                                : tree.remove(change.file, change.judged);
    if (!failure || failure.isAbsence()) // one that has gone is what was asked for
        change.parts = {Standing::after};
    return failure.isAbsence() ? Failure() : failure;
}

// Whether the bytes of a field give that key, as the reader takes it. The file may end behind the text, or
// where there is none behind its length.
bool givekey(std::string_view bytes, std::string_view key) {
    const std::int32_t length = TSXbinfile::intin(bytes, 0, -1);
    const auto taken = static_cast<std::size_t>(std::clamp(length, 0, 60));
    const std::string_view text = bytes.substr(std::min<std::size_t>(8, bytes.size()), taken);
    return length >= 0 && (length == 0 || bytes.size() >= 8 + taken) &&
           text.substr(0, text.find('\0')) == key;
}

std::string draftkey(FieldReader& reader, const NewKey& key, Change& change) {
    std::string_view found;
    std::string after;
    const std::string record = "record " + std::to_string(key.record) + ": ";
    if (const Failure failure = reader.at(key.offset, fieldsize, found))
        return record + failure.text();
    if (!givekey(found, key.oldkey))
        return record + "its key is no longer '" + std::string(key.oldkey) + "'";
    TSXbinfile::makefield(after, key.newkey, 61);
    addfield(change, key.record, key.offset, found, after);
    change.sizeafter = std::max(change.sizeafter, key.offset + static_cast<std::int64_t>(fieldsize));
    return "";
}

} // namespace

Standing standingof(std::string_view found, const KeyField& field) {
    const std::string before = field.before.whole();
    const std::string after = field.after.whole();
    if (found == after)
        return Standing::after;
    if (found == before)
        return Standing::before;
    return isMix(found, before, after) ? Standing::torn : Standing::other;
}

Failure lookexactly(Tree& tree, const std::string& name, Entry& entry) {
    const Failure failure = tree.look(name, Links::refused, entry);
    if (entry.name.substr(entry.name.rfind('/') + 1) != name.substr(name.rfind('/') + 1)) {
        entry.state = EntryState();
        entry.file = FileState();
    }
    return failure;
}

Failure look(Tree& tree, Change& change) {
    return change.kind == Change::keys ? lookatkeys(tree, change) : lookatwhole(tree, change);
}

Failure apply(Tree& tree, Change& change) {
    if (all(change, Standing::other))
        return {};
    const Failure failure = change.kind == Change::keys     ? applykeys(tree, change)
                            : change.kind == Change::making ? applymaking(tree, change)
                                                            : applydeletion(tree, change);
    return failure;
}

bool applyall(Tree& tree, std::vector<Change>& group, std::vector<Failure>& failures) {
    bool open = false;
    std::map<std::string, std::vector<std::size_t>>
        touched; // changes by the directory whose names they change
    failures.assign(group.size(), {});
    for (std::size_t i = 0; i < group.size(); ++i) {
        Change& change = group[i];
        failures[i] = apply(tree, change);
        open = open || (failures[i] && change.begun);
        change.made = !failures[i] && !any(change, Standing::before) && !any(change, Standing::torn);
        if (change.kind != Change::keys && isdone(change))
            touched[change.file.substr(0, change.file.rfind('/') + 1)].push_back(i);
    }
    for (const auto& [directory, changes] : touched)
        if (const Failure failure = tree.syncDirectoryOf(group[changes[0]].file)) {
            open = true;
            for (const std::size_t i : changes) {
                failures[i] = failure;
                group[i].made = false;
            }
        }
    return open;
}

bool all(const Change& change, Standing standing) {
    return std::all_of(change.parts.begin(), change.parts.end(),
                       [&](Standing part) { return part == standing; });
}

bool any(const Change& change, Standing standing) {
    return std::find(change.parts.begin(), change.parts.end(), standing) != change.parts.end();
}

bool isdone(const Change& change) {
    return all(change, Standing::after);
}

std::string draftkeys(Tree& tree, const FileState& onread, const std::vector<NewKey>& keys, Change& change,
                      std::vector<std::string>& left) {
    File file;
    Entry entry;
    Failure failure = tree.openToWrite(change.file, file);
    if (!failure)
        failure = file.state(change.judged);
    if (!failure)
        failure = file.entry(change.state);
    if (failure)
        return failure.text();
    if (!change.judged.isUnchanged(onread))
        return "another program has changed it since it was read";
    change.sizeafter = change.state.size;
    FieldReader reader(file);
    for (const NewKey& key : keys)
        if (std::string why = draftkey(reader, key, change); !why.empty())
            left.push_back(std::move(why));
    change.parts.assign(change.fieldcount, Standing::before);
    auto whole = std::make_shared<const File>(std::move(file));
    failure = checksumOf(contentOf(whole, change.state.size), change.checksum);
    return failure ? failure.text() : "";
}

Failure draftdeletion(Tree& tree, const FileState& known, Change& change) {
    Entry entry, target;
    Failure failure = tree.look(change.file, Links::refused, entry);
    if (!failure && entry.state.kind == EntryState::symbolic)
        failure = tree.look(change.file, Links::followed, target);
    if (failure)
        return failure;
    if (entry.state.kind == EntryState::missing)
        return {ERROR_FILE_NOT_FOUND};
    const FileState& file = entry.state.kind == EntryState::symbolic ? target.file : entry.file;
    change.state = entry.state;
    change.judged = entry.file;
    change.parts = {Standing::before};
    return known.identity.inode == 0 || file.isUnchanged(known) ? Failure() : Failure{ERROR_FILE_INVALID};
}
