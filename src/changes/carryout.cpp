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
        failure = failure ? failure : reader.at(field.offset, widthOf(field), found);
        change.parts.push_back(standingof(found, field));
    });
    return failure;
}

// To be changed, if it is still the file that was looked at. Its number is not asked, since some file systems
// give it another one meanwhile; but another file like it, put there by a second name, has one name more.
Failure openjudged(Tree& tree, const Change& change, Links links, File& file) {
    const Failure failure = tree.openToWrite(change.file, file, links);
    const bool same = file.opened().isUnchanged(change.judged) && file.opened().names <= change.judged.names;
    return failure || same ? failure : Failure{ERROR_FILE_INVALID};
}

Failure lookatkeys(Tree& tree, Change& change) {
    File file;
    Failure failure = lookexactly(tree, change.file, change.judged);
    if (!failure && change.judged.kind == FileState::missing)
        failure = {ERROR_FILE_NOT_FOUND};
    failure = failure ? failure : tree.openToWrite(change.file, file);
    change.judged = file.opened();
    return failure ? failure : readparts(file, change);
}

// Whether there stands what comes or goes: after, torn or other. A file is compared by the very opening by
// which it is known from then on.
Failure comparewhole(Tree& tree, Change& change, Standing& standing) {
    standing = Standing::other;
    if (change.judged.kind != change.state.kind)
        return {};
    if (change.state.kind == FileState::plain) {
        File file;
        const Failure failure = tree.openToRead(change.file, file, Links::unfollowed);
        change.judged = file.opened();
        return failure ? failure : compare(file, change.content, standing);
    }
    std::string target, wanted;
    Failure failure;
    if (change.state.kind == FileState::symbolic)
        failure = tree.readLink(change.file, target);
    failure = failure ? failure : wholeOf(change.content, wanted);
    if (target == wanted)
        standing = Standing::after;
    return failure;
}

// Of an entry that comes or goes as a whole.
Failure lookatwhole(Tree& tree, Change& change) {
    Standing standing = Standing::other;
    const bool coming = change.kind == Change::making;
    Failure failure = lookexactly(tree, change.file, change.judged);
    const bool there = change.judged.kind != FileState::missing;
    if (!failure && there)
        failure = comparewhole(tree, change, standing);
    const bool same = standing == Standing::after;
    if (coming ? !there : same)
        standing = Standing::before;
    else if (!coming)
        standing = there ? Standing::other : Standing::after;
    change.parts = {standing};
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
    Failure failure = openjudged(tree, change, Links::followed, file);
    if (failure)
        return failure;
    change.begun = true;
    failure = writefields(file, change);
    if (!failure && change.sizeafter < change.state.size && file.opened().size > change.sizeafter)
        failure = file.cut(change.sizeafter);
    failure = failure ? failure : file.sync();
    failure = failure ? failure : readparts(file, change);
    if (!failure && change.given && isdone(change))
        failure = file.giveTimes(change.read, change.changed);
    failure = failure ? failure : file.state(change.judged);
    const Failure closed = file.close();
    return failure ? failure : closed;
}

// One of which the first bytes stand there goes first: somebody else may hold it open, and must not get the
// rest.
Failure makeplain(Tree& tree, Change& change) {
    NewFile made;
    File whole;
    const bool fresh = change.parts[0] != Standing::after;
    const Rights rights = change.given ? Rights::ownerOnly : Rights::asDirectory;
    const bool torn = change.parts[0] == Standing::torn;
    Failure failure = torn ? tree.remove(change.file, change.judged) : Failure();
    failure = failure ? failure
              : fresh ? tree.make(change.file, made, rights)
                      : openjudged(tree, change, Links::unfollowed, whole);
    const File& file = fresh ? made.file : whole;
    change.begun = !failure && !fresh;
    failure = failure ? failure : writeContent(change.content, file);
    if (!failure && change.given)
        failure = file.give(change.state, change.attributes);
    return failure ? failure : fresh ? made.keep() : whole.sync();
}

Failure makelink(Tree& tree, const Change& change) {
    std::string target;
    const Failure failure = wholeOf(change.content, target);
    return failure ? failure : tree.makeLink(change.file, target);
}

Failure make(Tree& tree, Change& change) {
    if (!change.othername.empty() || change.state.kind != FileState::plain)
        return change.parts[0] != Standing::before         ? Failure()
               : !change.othername.empty()                 ? tree.addName(change.file, change.othername)
               : change.state.kind == FileState::directory ? tree.makeDirectory(change.file)
                                                           : makelink(tree, change);
    return makeplain(tree, change);
}

Failure applymaking(Tree& tree, Change& change) {
    Failure failure = make(tree, change);
    if (!failure && change.given && change.state.kind != FileState::plain) { // which got it while it was open
        File made;
        failure = tree.openEntry(change.file, made);
        failure = failure ? failure : made.give(change.state, change.attributes);
    }
    failure = failure ? failure : lookatwhole(tree, change);
    return failure || change.parts[0] != Standing::other ? failure : Failure{ERROR_FILE_INVALID};
}

Failure stillthere(Tree& tree, const Change& change) {
    FileState now;
    const Failure failure = lookexactly(tree, change.file, now);
    return failure || now.kind == FileState::missing ? failure : Failure{ERROR_FILE_INVALID};
}

Failure applydeletion(Tree& tree, Change& change) {
    Failure failure = change.state.kind == FileState::directory ? tree.removeDirectory(change.file)
                                                                : tree.remove(change.file, change.judged);
    if (failure.isAbsence()) // one that has gone is what was asked for
        failure = stillthere(tree, change);
    if (failure)
        return failure;
    change.parts = {Standing::after};
    return {};
}

Failure apply(Tree& tree, Change& change) {
    const bool done = change.kind == Change::deletion && isdone(change);
    if (all(change, Standing::other) || done)
        return {};
    return change.kind == Change::keys     ? applykeys(tree, change)
           : change.kind == Change::making ? applymaking(tree, change)
                                           : applydeletion(tree, change);
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

Failure lookexactly(Tree& tree, const std::string& name, FileState& state) {
    Entry entry;
    const Failure failure = tree.look(name, Links::unfollowed, entry);
    const bool same = entry.name.substr(entry.name.rfind('/') + 1) == name.substr(name.rfind('/') + 1);
    state = same ? entry.state : FileState();
    return failure;
}

Failure look(Tree& tree, Change& change) {
    return change.kind == Change::keys ? lookatkeys(tree, change) : lookatwhole(tree, change);
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
    const auto file = std::make_shared<File>();
    Failure failure = tree.openToWrite(change.file, *file);
    if (failure)
        return failure.text();
    change.state = change.judged = file->opened();
    if (!change.judged.isUnchanged(onread))
        return "another program has changed it since it was read";
    change.sizeafter = change.state.size;
    FieldReader reader(*file);
    for (const NewKey& key : keys)
        if (std::string why = draftkey(reader, key, change); !why.empty())
            left.push_back(std::move(why));
    change.parts.assign(change.fieldcount, Standing::before);
    failure = checksumOf(contentOf(file, change.state.size), change.checksum);
    return failure ? failure.text() : "";
}

Failure draftdeletion(Tree& tree, const FileStamp& known, Change& change) {
    Entry entry, target;
    Failure failure = tree.look(change.file, Links::unfollowed, entry);
    const bool link = entry.state.kind == FileState::symbolic;
    if (!failure && link)
        failure = tree.look(change.file, Links::followed, target);
    if (failure)
        return failure;
    if (entry.state.kind == FileState::missing)
        return {ERROR_FILE_NOT_FOUND};
    change = deletionof(std::move(change.file), entry.state);
    const bool unchanged = (link ? target : entry).state.isUnchanged(known);
    return known.identity.inode == 0 || unchanged ? Failure() : Failure{ERROR_FILE_INVALID};
}
