#include "changes/undowriter.h"

#include <algorithm>
#include <ctime>
#include <random>
#include <utility>

#include "changes/undodirectory.h"
#include "platform/system/person.h"

namespace {

std::string told(const std::string& what, Failure failure) {
    return what + " (" + failure.text() + ")";
}

// A medium without owners gives a file to whoever mounted it, and a server may give one to nobody.
bool isUsersAlone(const File& file) {
    FileState state;
    constexpr std::uint32_t others = 077;
    return !file.state(state) && state.owner == currentuser() && (state.permissions & others) == 0;
}

} // namespace

std::uint64_t randomnumber() {
    std::random_device device;
    return std::max<std::uint64_t>((std::uint64_t{device()} << 32) | device(), 1);
}

std::string UndoWriter::keep(Tree& database, std::vector<Change>& group) {
    if (!stands()) {
        *this = UndoWriter(wanted_, isrestore_);
        if (std::string failure = make(database); !failure.empty())
            return failure;
    }
    return append(database, group);
}

// Whether the name still leads to the file of this run.
bool UndoWriter::stands() {
    FileState own;
    Entry entry;
    return file_.isOpen() && !file_.state(own) && !directory_->begin() &&
           !directory_->look(nameThere_, Links::unfollowed, entry) && entry.state.identity == own.identity;
}

std::string UndoWriter::make(Tree& database) {
    std::string directory;
    if (const Failure failure = database.fullPath(directory))
        return told(database.path() + " can't be read", failure);
    header_.number = randomnumber();
    header_.time = std::time(nullptr);
    header_.isrestore = isrestore_ ? 1 : 0;
    return wanted_.empty() ? makeInState(directory) : makeElsewhere(directory);
}

std::string UndoWriter::makeInState(const std::string& directory) {
    if (undodirectory().empty())
        return "there is no directory for undo files: set XDG_STATE_HOME or HOME";
    directory_ = std::make_unique<Tree>();
    if (const Failure failure = openundodirectory(*directory_, true))
        return told("the directory " + undodirectory() + " can't be made or entered, or is a link", failure);
    std::string why;
    const Failure taken = underFreeName(*directory_, [&](const std::string& name) {
        Entry entry;
        Failure failure = directory_->look(name, Links::unfollowed, entry);
        if (!failure && entry.state.kind != FileState::missing)
            failure = {ERROR_ALREADY_EXISTS};
        if (!failure)
            why = makeHere(name, directory);
        return failure;
    });
    if (taken)
        return told("no undo file can be made in " + undodirectory(), taken);
    if (why.empty())
        removeoldundofiles(*directory_, name_ = nameThere_);
    return why;
}

// Names of one second have numbers.
Failure UndoWriter::underFreeName(Tree& directory,
                                  const std::function<Failure(const std::string&)>& make) const {
    constexpr int tries = 1000;
    Failure failure = {ERROR_ALREADY_EXISTS};
    for (int number = 0; number < tries && failure.number == ERROR_ALREADY_EXISTS; ++number)
        failure = make(newundoname(directory, header_.time, number));
    return failure;
}

std::string UndoWriter::makeHere(const std::string& name, const std::string& directory) {
    const std::string path = wanted_.empty() ? directory_->path() + "/" + name : wanted_;
    NewFile made;
    FileState own;
    auto position = static_cast<std::int64_t>(UndoHeader::size);
    Failure failure = directory_->make(name, made, Rights::ownerOnly, Appears::atOnce);
    if (!failure && !isUsersAlone(made.file))
        return "the undo file " + path +
               " would not belong to this user alone, since its file system has no owners; give another "
               "place";
    failure = failure ? failure : writehead(made.file, position, directory);
    header_.length = header_.finished = static_cast<std::uint64_t>(position);
    failure = failure ? failure : made.file.write(0, header_.encode());
    failure = failure ? failure : made.keep();
    failure = failure ? failure : directory_->syncDirectoryOf(name);
    if (failure) {
        if (!made.file.state(own)) [[maybe_unused]] // which may have its name by now
            const Failure left = directory_->remove(name, own);
        return told("the undo file " + path + " can't be written", failure);
    }
    file_ = std::move(made.file);
    path_ = path;
    nameThere_ = name;
    return "";
}

std::string UndoWriter::makeElsewhere(const std::string& directory) {
    directory_ = std::make_unique<Tree>();
    std::string name, full;
    Failure failure = directory_->openDirectoryOf(wanted_, name);
    failure = failure ? failure : directory_->fullPath(full);
    if (failure)
        return told("the directory of " + wanted_ + " can't be entered", failure);
    if ((full + "/").starts_with(directory + "/"))
        return "the undo file " + wanted_ + " would stand in the database; give another place";
    std::string why = makeHere(name, directory);
    if (why.empty()) {
        path_ = full + "/" + name;
        unfound_ = linkToIt();
    }
    return why;
}

// A file elsewhere is found by its link, should the run be interrupted. Without one it still serves a
// restore.
std::string UndoWriter::linkToIt() {
    Tree directory;
    Failure failure = openundodirectory(directory, true);
    if (!failure)
        failure = underFreeName(
            directory, [&](const std::string& name) { return directory.makeLink(name_ = name, path_); });
    failure = failure ? failure : directory.syncDirectoryOf(name_);
    if (!failure)
        return "";
    name_.clear();
    return told("a link to it in " + undodirectory() + " can't be made", failure);
}

// What the group adds to the counts, and the directories whose times are not in the file yet.
std::string UndoWriter::count(Tree& database, std::vector<Change>& group,
                              std::vector<DirectoryTimes>& directories) {
    std::set<std::string> parents = {""}; // in the database's own the change is announced
    for (const Change& change : group) {
        foreachfield(change, [this](const KeyField& field) {
            if (field.isChange()) // else it was left, or stands there already
                ++header_.keys;
        });
        header_.deletions += change.kind == Change::deletion ? 1 : 0;
        header_.makings += change.kind == Change::making ? 1 : 0;
        if (change.kind != Change::keys)
            parents.insert(parentof(change.file));
    }
    for (const std::string& parent : parents) {
        Entry entry;
        if (!parents_.insert(parent).second)
            continue;
        if (const Failure failure = database.look(parent.empty() ? "." : parent, Links::followed, entry))
            return told(parent + " can't be read", failure);
        directories.push_back({parent, entry.state});
    }
    return "";
}

std::string UndoWriter::append(Tree& database, std::vector<Change>& group) {
    before_ = header_;
    ++groups_;
    auto position = static_cast<std::int64_t>(header_.length);
    std::vector<DirectoryTimes> directories;
    std::string why = count(database, group, directories);
    if (why.empty())
        why = writegroup(file_, position, database, group, directories);
    header_.length = static_cast<std::uint64_t>(position);
    if (why.empty())
        if (const Failure failure = file_.sync())
            why = told("it can't be written", failure);
    if (why.empty())
        why = putHeader();
    if (why.empty())
        return "";
    drop();
    return "the undo file " + path_ + ": " + why;
}

std::string UndoWriter::putHeader() {
    Failure failure = file_.write(0, header_.encode());
    failure = failure ? failure : file_.sync();
    return failure ? told("it can't be written", failure) : "";
}

// What was refused must not be listed, nor take space.
void UndoWriter::drop() {
    if (!file_.isOpen())
        return;
    header_ = before_;
    --groups_;
    parents_.clear(); // a directory that is told twice is no harm, the first counts
    putHeader();
    [[maybe_unused]] const Failure left = file_.cut(static_cast<std::int64_t>(header_.length));
}

std::string UndoWriter::finish() {
    if (!file_.isOpen())
        return "";
    header_.finished = header_.length;
    const std::string why = putHeader();
    return why.empty() ? why : "the undo file " + path_ + ": " + why;
}

namespace {

// Writes the header of an undo file anew, in which mark has changed something.
template <class Mark> void remark(const std::string& path, Mark mark) {
    Tree directory;
    std::string name, head;
    File file;
    UndoHeader header;
    if (directory.openDirectoryOf(path, name) || openundofile(directory, name, true, file) ||
        file.read(0, UndoHeader::size, head) || !header.decode(head))
        return;
    mark(header);
    if (!file.write(0, header.encode())) [[maybe_unused]]
        const Failure left = file.sync();
}

} // namespace

void markrestored(const std::string& path, std::uint32_t group) {
    remark(path, [&](UndoHeader& header) { header.restoredfrom = std::min(header.restoredfrom, group); });
}

void markfinished(const std::string& path, std::uint64_t number) {
    remark(path, [&](UndoHeader& header) {
        if (header.number == number)
            header.finished = header.length;
    });
}
