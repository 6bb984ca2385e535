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

std::vector<Waiting> findWaiting(const std::string& databaseDirectory) {
    std::vector<Waiting> found;
    EntryState state;
    if (!readEntry(databaseDirectory, OfLink::target, state))
        return found;
    for (const std::string& path : undoFilePaths()) {
        UndoHeader header;
        if (!readUndoHeader(path, header) || !header.isOpen() || header.inode != state.inode)
            continue;
        Waiting waiting;
        waiting.damage = readUndoFile(path, waiting.file);
        if (waiting.damage.empty() ? isAbout(waiting.file, databaseDirectory) : header.device == state.device)
            found.push_back(std::move(waiting));
    }
    return found;
}

} // namespace

bool isInterrupted(const std::string& databaseDirectory) {
    return !findWaiting(resolvePath(databaseDirectory)).empty();
}

FinishedWork finishInterrupted(const std::string& databaseDirectory) {
    FinishedWork work;
    const std::string directory = resolvePath(databaseDirectory);
    for (const Waiting& waiting : findWaiting(directory)) {
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
