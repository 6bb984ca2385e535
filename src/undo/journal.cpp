#include "undo/journal.h"

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "platform/system/text.h"
#include "undo/content.h"
#include "undo/fields.h"
#include "undo/place.h"
#include "undo/undowriter.h"

namespace {

class Finisher {
public:
    Finisher(const UndoFile& undo, const std::string& databaseDirectory, FinishedWork& work)
        : undo_(undo), root_(databaseDirectory), work_(work) {}

    void run() {
        for (const UndoItem& item : undo_.items)
            if (item.end > undo_.header.finished)
                finish(item);
        UndoWriter writer(undo_, root_);
        if (good_ && !writer.finish())
            fail(writer.failure());
        work_.texts.push_back("An interrupted change of the database " +
                              std::string(good_ ? "was finished: " : "could not be finished: ") +
                              std::to_string(rewritten_) +
                              " key fields got their new bytes from the undo file " + undo_.path);
        work_.texts.insert(work_.texts.end(), texts_.begin(), texts_.end());
        if (!good_)
            work_.complete = false;
    }

private:
    void tell(const std::string& text) { texts_.push_back(text); }
    void fail(const std::string& text) {
        tell(text);
        good_ = false;
    }
    std::string under(const std::string& name) const { return root_ + "/" + name; }

    void finish(const UndoItem& item) {
        EntryState state;
        const OfLink links = item.kind == UndoItem::keys ? OfLink::target : OfLink::itself;
        if (!readEntry(under(item.file), links, state))
            fail(under(item.file) + " can't be read (" + errorText(GetLastError()) + ")");
        else if (item.kind == UndoItem::keys)
            finishKeys(item, state);
        else if (item.kind == UndoItem::deletion && state.kind != EntryState::missing)
            tell(under(item.file) + " was to be deleted, and is still there");
        else if (item.kind == UndoItem::making && state.kind == EntryState::missing)
            tell(under(item.file) + " was to be made, and is not there");
        else if (item.kind != UndoItem::times && item.kind != UndoItem::beside &&
                 !syncDirectoryOf(under(item.file).c_str()) &&
                 GetLastError() != ERROR_FILE_NOT_FOUND) // its directory has gone too
            fail(under(item.file) + " can't be put on the disk (" + errorText(GetLastError()) + ")");
    }

    void finishKeys(const UndoItem& item, const EntryState& state) {
        std::string content;
        if (state.kind != EntryState::plain || state.inode != item.state.inode)
            return tell(under(item.file) + " is another file than it was; its changed keys are left");
        if (!readContent(under(item.file), content))
            return fail(under(item.file) + " can't be read (" + errorText(GetLastError()) + ")");
        if (!rewrite(item, content))
            fail(under(item.file) + " can't be written (" + errorText(GetLastError()) + ")");
    }

    bool rewrite(const UndoItem& item, const std::string& content) {
        ByteStream file;
        if (!file.open(under(item.file).c_str(), OpenMode::update))
            return false;
        for (const FieldChange& field : item.fields) {
            const Standing standing = standingOf(content, field);
            if (standing == Standing::foreign)
                tell(under(item.file) +
                     Text<80>()
                         .format(", record %d: other bytes stand at offset %lld; they are left", field.record,
                                 static_cast<long long>(field.offset))
                         .c_str());
            if (standing == Standing::foreign || standing == Standing::after)
                continue;
            const std::string bytes = field.after.whole();
            if (!file.seek(field.offset) || file.write(bytes.data(), bytes.size()) != bytes.size())
                return false;
            ++rewritten_;
        }
        const bool longer =
            item.sizeAfter < item.state.size && content.size() > static_cast<std::size_t>(item.sizeAfter);
        return (!longer || cutFile(under(item.file), item.sizeAfter)) && file.sync() && file.close();
    }

    const UndoFile& undo_;
    std::string root_;
    FinishedWork& work_;
    std::vector<std::string> texts_;
    bool good_ = true;
    int rewritten_ = 0;
};

// A file that was left open and is about this database.
struct Waiting {
    UndoFile file;
    std::string damage;
};

// Whether the disk has failed; what is away or another user's is no journal of this one.
bool hasFailed() {
    const std::uint32_t number = GetLastError();
    return number != ERROR_SUCCESS && !isAbsence(number) && number != ERROR_ACCESS_DENIED &&
           number != ERROR_CANT_RESOLVE_FILENAME;
}

// Looks for what waits, and does not take for nothing what it could not look at.
class Search {
public:
    explicit Search(std::string databaseDirectory) : directory_(std::move(databaseDirectory)) {
        if (!readEntry(directory_, OfLink::target, state_)) {
            noteFailure(directory_);
            return;
        }
        SetLastError(ERROR_SUCCESS);
        const std::vector<std::string> paths = undoFilePaths();
        if (paths.empty())
            noteFailure(undoDirectory());
        for (const std::string& path : paths)
            look(path);
    }

    std::vector<Waiting> waiting;
    std::vector<std::string> unknown; // for the person: where more may wait

private:
    void look(const std::string& path) {
        UndoHeader header;
        if (!readUndoHeader(path, header)) {
            noteFailure(path);
            return;
        }
        if (!header.isOpen() || header.inode != state_.inode)
            return;
        Waiting found;
        found.damage = readUndoFile(path, found.file);
        if (found.damage.empty() ? isAbout(found.file, directory_) : header.device == state_.device)
            waiting.push_back(std::move(found));
        else if (found.damage.empty())
            noteFailure(directory_);
    }

    void noteFailure(const std::string& what) {
        if (hasFailed())
            unknown.push_back("Whether a change of the database was interrupted can't be known, since " +
                              what + " can't be read (" + errorText(GetLastError()) + ")");
    }

    std::string directory_;
    EntryState state_;
};

} // namespace

bool isInterrupted(const std::string& databaseDirectory) {
    return !Search(resolvePath(databaseDirectory)).waiting.empty();
}

FinishedWork finishInterrupted(const std::string& databaseDirectory) {
    FinishedWork work;
    const std::string directory = resolvePath(databaseDirectory);
    const Search search(directory);
    work.texts = search.unknown;
    work.complete = work.texts.empty();
    for (const Waiting& waiting : search.waiting) {
        if (waiting.damage.empty()) {
            Finisher(waiting.file, directory, work).run();
            continue;
        }
        work.complete = false;
        work.texts.push_back(
            "A change of the database was interrupted and can't be finished, since of its undo file " +
            waiting.file.path + " is said: " + waiting.damage + ". Move that file away to go on without");
    }
    return work;
}
