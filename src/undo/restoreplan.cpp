#include "undo/restoreplan.h"

#include <algorithm>
#include <map>

#include "platform/system/errors.h"
#include "platform/system/path.h"
#include "platform/system/text.h"
#include "undo/content.h"
#include "undo/fields.h"

namespace {

// Goes back through the changes of one file, from what stands on the disk to what stood before the first of
// them.
class FileWalk {
public:
    FileWalk(const std::string& databaseDirectory, const std::string& name,
             const std::set<std::string>& removed, const std::set<std::string>& beside)
        : root_(databaseDirectory), path_(databaseDirectory + "/" + name), removed_(removed),
          beside_(beside) {
        plan.name = name;
        if (!readEntry(path_, OfLink::itself, disk_))
            leave("it can't be read (" + errorText(GetLastError()) + ")");
    }

    void undo(const UndoItem& item) {
        if (item.kind == UndoItem::keys)
            undoKeys(item);
        else if (item.kind == UndoItem::made)
            made_ = &item;
        else if (item.kind == UndoItem::making)
            undoMaking();
        else
            undoDeletion(item);
    }

    void end() {
        if (plan.recreate != nullptr)
            endRecreated(*plan.recreate);
        else if (now_ == Now::onDisk && known_)
            endOnDisk();
    }

    FileRestore plan;
    std::vector<std::string> left;

private:
    enum class Now { onDisk, gone, recreated };

    void leave(const std::string& why) { left.push_back(path_ + ": " + why); }

    bool know() {
        if (now_ != Now::onDisk || known_)
            return now_ != Now::gone;
        EntryState target;
        const bool told = readEntry(path_, OfLink::target, target);
        if (told && target.kind == EntryState::missing) {
            leave("it is not there any more");
            return false;
        }
        known_ = told && readContent(path_, content_);
        if (!known_)
            leave("it can't be read (" + errorText(GetLastError()) + ")");
        standing_ = content_;
        return known_;
    }

    void undoKeys(const UndoItem& item) {
        if (!know())
            return;
        const std::size_t leftBefore = left.size();
        for (const FieldChange& field : item.fields)
            undoField(field);
        if (static_cast<std::int64_t>(content_.size()) == item.sizeAfter && item.state.size < item.sizeAfter)
            content_.resize(static_cast<std::size_t>(item.state.size));
        plan.state = checksumOf(content_) == item.checksum ? &item.state : nullptr;
        if (plan.state == nullptr && left.size() == leftBefore)
            leave("it has changed in other places since");
    }

    void undoField(const FieldChange& field) {
        if (standingOf(content_, field) == Standing::foreign)
            return leave(Text<80>()
                             .format("record %d has changed since, at offset %lld", field.record,
                                     static_cast<long long>(field.offset))
                             .c_str());
        const std::string before = field.before.whole();
        const auto offset = static_cast<std::size_t>(field.offset);
        content_.resize(std::max(content_.size(), offset + before.size()));
        content_.replace(offset, before.size(), before);
        touched_[field.offset] = {field.record, std::max(field.before.length, field.after.length)};
    }

    void undoMaking() {
        if (now_ == Now::onDisk && disk_.kind != EntryState::missing) {
            if (disk_.kind == EntryState::directory ? isEmptied() : isAsMade())
                plan.remove = true;
            else
                leave(disk_.kind == EntryState::directory ? "it was made, and is not empty"
                                                          : "it has changed since it was made");
        }
        now_ = Now::gone;
        plan.recreate = plan.attributes = nullptr;
        plan.state = nullptr;
    }

    bool isEmptied() const {
        const std::vector<std::string> entries = directoryEntries(path_);
        return std::all_of(entries.begin(), entries.end(), [this](const std::string& entry) {
            return removed_.count(plan.name + "/" + entry) != 0;
        });
    }

    bool isAsMade() {
        if (disk_.kind == EntryState::plain && !know())
            return false;
        if (disk_.kind == EntryState::symbolic && !readLink(path_, content_))
            return false;
        return made_ != nullptr && made_->state.kind == disk_.kind && made_->checksum == checksumOf(content_);
    }

    void undoDeletion(const UndoItem& item) {
        now_ = Now::recreated;
        plan.recreate = &item;
        plan.state = &item.state;
        plan.attributes = &item;
        content_ = item.content;
    }

    // What stands there already as it is to be came from an earlier, interrupted restore.
    void endRecreated(const UndoItem& item) {
        if (isThere(item)) {
            left.clear();
            plan.remove = false;
            plan.recreate = nullptr;
        } else if (disk_.kind != EntryState::missing && !plan.remove) {
            leave("another one stands there now");
        } else if (disk_.kind == EntryState::missing && pathExists(path_) && !isOldTwin(resolvePath(path_))) {
            leave("one whose name differs only in case stands there now");
        }
        plan.content = content_;
        plan.checksum = checksumOf(content_);
    }

    // A name that differs only in case, and stood there before the deletion or is taken back with it.
    bool isOldTwin(const std::string& path) const {
        return beside_.count(path.substr(std::min(root_.size() + 1, path.size()))) != 0;
    }

    bool isThere(const UndoItem& item) {
        std::string found;
        EntryState other;
        if (disk_.kind != item.state.kind)
            return false;
        if (!plan.secondOf.empty())
            return readEntry(root_ + "/" + plan.secondOf, OfLink::itself, other) &&
                   other.inode == disk_.inode;
        return readOwnContent(path_, disk_, found) && found == content_;
    }

    void endOnDisk() {
        plan.checksum = checksumOf(content_);
        if (content_.size() != standing_.size())
            plan.size = static_cast<std::int64_t>(content_.size());
        for (const auto& [offset, place] : touched_) {
            const std::string_view before = bytesAt(standing_, offset, place.second);
            const std::string_view after = bytesAt(content_, offset, place.second);
            if (before != after)
                plan.fields.push_back({place.first, offset, std::string(before), std::string(after)});
        }
    }

    std::string root_;
    std::string path_;
    const std::set<std::string>& removed_;
    const std::set<std::string>& beside_;
    EntryState disk_;
    Now now_ = Now::onDisk;
    bool known_ = false; // the content of the file on the disk
    std::string standing_;
    std::string content_;
    std::map<std::int64_t, std::pair<std::int32_t, std::size_t>> touched_; // offset: record, length
    const UndoItem* made_ = nullptr;
};

} // namespace

std::string parentOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "" : name.substr(0, slash);
}

RestorePlan::RestorePlan(const UndoFile& undo, const std::string& databaseDirectory)
    : root_(databaseDirectory) {
    std::map<std::string, Items> items;
    std::vector<std::string> order, second; // second names come last, when their files are known
    for (auto item = undo.items.rbegin(); item != undo.items.rend(); ++item) {
        if (item->kind == UndoItem::beside || item->kind == UndoItem::deletion)
            beside_.insert(item->file);
        if (item->kind == UndoItem::times || item->kind == UndoItem::beside)
            continue;
        Items& own = items[item->file];
        if (own.empty())
            (item->otherName.empty() ? order : second).push_back(item->file);
        own.push_back(&*item);
    }
    order.insert(order.end(), second.begin(), second.end());
    for (const std::string& name : order)
        planFile(name, items[name]);
    std::set<std::string> told;
    for (const UndoItem& item : undo.items)
        if (item.kind == UndoItem::times && told.insert(item.file).second)
            directories.push_back(&item);
}

void RestorePlan::planFile(const std::string& name, const Items& items) {
    FileWalk walk(root_, name, removed_, beside_);
    for (const UndoItem* item : items)
        walk.undo(*item);
    if (walk.plan.recreate != nullptr && !isSecondName(*walk.plan.recreate, walk.plan.secondOf))
        walk.left.push_back(root_ + "/" + walk.plan.recreate->otherName + ": it can't be read (" +
                            errorText(GetLastError()) + ")");
    walk.end();
    if (walk.left.empty())
        (walk.plan.state == nullptr ? removed_ : known_).insert(name);
    else
        leftNames.insert(name);
    left.insert(left.end(), walk.left.begin(), walk.left.end());
    files.push_back(std::move(walk.plan));
}

// The other name, where it still leads to what both led to: one that is restored too does, else its content
// tells and not its number, which a file made since may have got. False on failure.
bool RestorePlan::isSecondName(const UndoItem& deletion, std::string& secondOf) const {
    if (deletion.otherName.empty())
        return true;
    EntryState other;
    std::string content;
    const std::string path = root_ + "/" + deletion.otherName;
    bool same = known_.count(deletion.otherName) != 0;
    if (!same) {
        if (!readEntry(path, OfLink::itself, other) ||
            (other.kind == EntryState::plain && !readContent(path, content)))
            return false;
        same = other.kind == EntryState::plain && content == deletion.content;
    }
    if (same)
        secondOf = deletion.otherName;
    return true;
}
