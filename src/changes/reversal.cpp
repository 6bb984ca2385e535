#include "changes/reversal.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "changes/carryout.h"

namespace {

// Goes back through the changes of one file, from what stands on the disk to what stood before the first of
// them.
class FileWalk {
public:
    FileWalk(Tree& tree, LinkedNames& linked, const std::string& name, const std::set<std::string>& going)
        : tree_(tree), linked_(linked), name_(name), going_(going) {
        if (const Failure failure = lookexactly(tree, name, there_))
            leave("it can't be read (" + failure.text() + ")");
    }

    void undo(const Change& change) {
        if (change.kind == Change::keys)
            undokeys(change);
        else if (change.kind == Change::making)
            undomaking(change);
        else
            undodeletion(change);
    }

    void end() {
        if (now_ == Now::back)
            endback();
        else if (now_ == Now::there && file_)
            endthere();
    }

    std::vector<Change> changes; // a deletion of what stands there, before a making
    std::vector<std::string> left;
    const Change* deletion = nullptr; // that is taken back

private:
    enum class Now { there, gone, back };
    struct Field {
        std::int32_t record;
        std::string found, wanted; // the wanted one is shorter where the file is to end in it
    };

    void leave(const std::string& why) { left.push_back(tree_.path() + "/" + name_ + ": " + why); }

    bool open() {
        if (std::exchange(tried_, true))
            return file_ != nullptr;
        const auto file = std::make_shared<File>();
        const bool missing = there_.kind == FileState::missing;
        const Failure failure = missing ? Failure{ERROR_FILE_NOT_FOUND} : tree_.openToWrite(name_, *file);
        if (failure)
            leave(failure.isAbsence() ? "it is not there any more"
                                      : "it can't be read or written (" + failure.text() + ")");
        else
            file_ = file;
        size_ = file->opened().size;
        return file_ != nullptr;
    }

    void undokeys(const Change& change) {
        if (now_ == Now::gone || (now_ == Now::there && !open()))
            return;
        bool maycut = true; // nothing that is left reaches behind the end that the file had
        foreachfield(change, [&](const KeyField& field) {
            const std::size_t before = left.size();
            undofield(field);
            const std::int64_t end = field.offset + std::max(field.before.length, field.after.length);
            maycut = maycut && (left.size() == before || end <= change.state.size);
        });
        last_ = &change;
        const auto [least, most] = std::minmax(change.sizeafter, change.state.size);
        if (maycut && size_ >= least && size_ <= most) // between the two where the change was interrupted
            size_ = change.state.size;
    }

    void undofield(const KeyField& field) {
        Field& own = fields_[field.offset];
        own.record = field.record;
        if (own.found.empty() && now_ == Now::there) {
            const std::size_t width = std::max(field.before.length, field.after.length);
            if (const Failure failure = file_->read(field.offset, width, own.found))
                return leave("it can't be read (" + failure.text() + ")");
            own.wanted = own.found;
        }
        if (now_ == Now::there && standingof(own.wanted, field) == Standing::other)
            return leave("record " + std::to_string(field.record) + " has changed since" +
                         (keyin(own.found).empty() ? ", at offset " + std::to_string(field.offset)
                                                   : ": its key is '" + keyin(own.found) + "' now"));
        own.wanted = field.before.whole();
    }

    // What the file would hold if its key fields stood as they were found, or are wanted.
    FileContent with(FileContent content, std::string Field::*which) const {
        std::map<std::int64_t, std::string> patches;
        for (const auto& [offset, field] : fields_)
            if (offset < content.size)
                patches[offset] = (field.*which).substr(0, static_cast<std::size_t>(content.size - offset));
        return patched(std::move(content), std::move(patches));
    }

    void undomaking(const Change& change) {
        if (now_ == Now::there && there_.kind != FileState::missing) {
            if (!isasmade(change))
                leave(there_.kind == FileState::directory ? "it was made, and is not empty"
                                                          : "it has changed since it was made");
            changes = {deletionof(name_, there_)};
            changes[0].othername = linked_.other(name_, there_);
        }
        now_ = Now::gone;
        deletion = nullptr;
    }

    bool isasmade(const Change& change) {
        Change found = change;
        if (there_.kind == FileState::directory)
            return change.state.kind == FileState::directory && isemptied();
        found.content = with(std::move(found.content), &Field::found);
        return !look(tree_, found) && found.parts[0] == Standing::after;
    }

    bool isemptied() const {
        std::vector<std::string> names;
        return !tree_.names(name_, names) &&
               std::all_of(names.begin(), names.end(), [this](const std::string& entry) {
                   return going_.count(name_ + "/" + entry) != 0;
               });
    }

    void undodeletion(const Change& change) {
        now_ = Now::back;
        deletion = &change;
        fields_.clear();
    }

    // What stands there already as it is to be came from an earlier restore that was interrupted.
    void endback() {
        Change making = *deletion;
        making.kind = Change::making;
        making.given = true;
        making.content = with(std::move(making.content), &Field::wanted);
        if (const Failure failure = look(tree_, making))
            leave("it can't be read (" + failure.text() + ")");
        else if (making.parts[0] == Standing::after)
            left.clear();
        else if (making.parts[0] == Standing::other && changes.empty())
            leave("another one stands there now");
        else if (making.parts[0] == Standing::other)
            making.parts = {Standing::before}; // what stands there goes first
        if (!making.parts.empty() && making.parts[0] == Standing::after)
            changes.clear();
        changes.push_back(std::move(making));
    }

    // As long as it is to be; the last field may reach behind the end that it has.
    FileContent lengthened() const {
        const std::int64_t size = file_->opened().size;
        FileContent whole = contentOf(file_, std::min(size_, size));
        if (size_ <= size)
            return whole;
        return {size_, [whole, more = size_ - size](const FileContent::Visit& visit) {
                    const Failure failure = whole.pieces(visit);
                    return failure ? failure
                                   : visit(whole.size, std::string(static_cast<std::size_t>(more), '\0'));
                }};
    }

    void endthere() {
        Change change;
        change.file = name_;
        change.state = change.judged = file_->opened();
        change.sizeafter = size_;
        if (const std::string why = linked_.whyreachesothers(change.state); !why.empty())
            return leave(why);
        for (const auto& [offset, field] : fields_)
            addfield(change, field.record, offset, field.found, field.wanted);
        change.parts.assign(change.fieldcount, Standing::before);
        std::uint32_t checksum = 0;
        if (checksumOf(contentOf(file_, change.state.size), change.checksum) ||
            checksumOf(with(lengthened(), &Field::wanted), checksum))
            return leave("it can't be read");
        change.given = left.empty() && checksum == last_->checksum;
        change.read = last_->state.read; // all of it is as it was: so are its times
        change.changed = last_->state.changed;
        if (left.empty() && !change.given)
            leave("it has changed in other places since");
        file_.reset();
        changes = {std::move(change)};
    }

    Tree& tree_;
    LinkedNames& linked_;
    std::string name_;
    const std::set<std::string>& going_;
    FileState there_;
    Now now_ = Now::there;
    bool tried_ = false;
    std::shared_ptr<const File> file_;
    std::int64_t size_ = 0;
    std::map<std::int64_t, Field> fields_;
    const Change* last_ = nullptr; // that changed keys: the earliest
};

} // namespace

Reversal::Reversal(Tree& tree, const UndoFile& undo, std::uint32_t fromgroup) : tree_(tree), linked_(tree) {
    std::map<std::string, Steps> steps;
    std::vector<std::string> order, second; // second names come last, when their files are known
    for (std::size_t group = undo.groups.size(); group >= fromgroup && group > 0; --group) {
        const std::vector<Change>& made = undo.groups[group - 1].changes;
        for (auto change = made.rbegin(); change != made.rend(); ++change) {
            Steps& own = steps[change->file];
            if (own.empty())
                (change->othername.empty() ? order : second).push_back(change->file);
            own.push_back(&*change);
        }
    }
    order.insert(order.end(), second.begin(), second.end());
    for (const std::string& name : order)
        reverse(name, steps[name]);
}

// Of a file of which something is left, the fields that have not changed since come back, but no file comes
// or goes.
void Reversal::reverse(const std::string& name, const Steps& steps) {
    FileWalk walk(tree_, linked_, name, going_);
    for (const Change* step : steps)
        walk.undo(*step);
    walk.end();
    if (!walk.left.empty())
        leftin.insert(parentof(name));
    left.insert(left.end(), walk.left.begin(), walk.left.end());
    if (walk.left.empty())
        (walk.changes.size() == 1 && walk.changes[0].kind == Change::deletion ? going_ : same_).insert(name);
    for (Change& change : walk.changes) {
        if (!walk.left.empty() && change.kind != Change::keys)
            continue;
        if (change.kind == Change::making && !leadstosame(change))
            change.othername.clear();
        changes.push_back(std::move(change));
    }
    if (walk.deletion != nullptr && walk.left.empty() && walk.deletion->state.names > 1)
        linked.push_back(walk.deletion);
}

// Whether the other name still leads to what both led to: one that is restored too does, else its content
// tells and not its number, which a file made since may have got. Where it can't be read only the person can
// want a file of its own.
bool Reversal::leadstosame(const Change& deletion) {
    if (deletion.othername.empty() || same_.count(deletion.othername) != 0)
        return !deletion.othername.empty();
    File file;
    FileState there;
    Standing standing = Standing::other;
    Failure failure = lookexactly(tree_, deletion.othername, there);
    if (!failure && there.kind != FileState::plain)
        return false;
    failure = failure ? failure : tree_.openToRead(deletion.othername, file, Links::unfollowed);
    failure = failure ? failure : compare(file, deletion.content, standing);
    if (failure)
        left.push_back(tree_.path() + "/" + deletion.file + ": its other name '" + deletion.othername +
                       "' can't be read (" + failure.text() + ")");
    return !failure && standing == Standing::after;
}
