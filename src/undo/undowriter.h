// Writes an undo file: group by group, each on the disk itself before the first of its changes is made.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "undo/undofile.h"

struct NewField {
    std::int32_t record = 0;
    std::int64_t offset = 0;
    std::string before; // what stands there, shorter where the file ends
    std::string after;
};

// Each operation gives false on failure, and failure then says what could not be done.
class UndoWriter {
public:
    // A new undo file under the path, or where that is empty in the user's state directory. Touches nothing
    // yet.
    UndoWriter(const std::string& root, const std::string& path);
    // Goes on with one that was left open.
    UndoWriter(const UndoFile& file, const std::string& root);

    void expect(std::size_t keys); // makes room for so many changes of keys
    // Takes a change into the group with what stands on the disk now. Names are relative to the database
    // directory. size is that of the file behind the change; below 0, as the fields make it.
    bool addKeys(const std::string& name, const std::vector<NewField>& fields, std::int64_t size = -1);
    bool addDeletion(const std::string& name);
    bool addMaking(const std::string& name);

    bool commit(); // puts the group on the disk; its changes may be made then
    void drop();   // takes the group back that was not committed
    bool finish(); // the changes of all groups have been made, as far as that was possible

    const std::string& path() const { return path_; } // empty as long as there is no file
    const std::string& failure() const { return failure_; }
    // Why a later run will not find the file by itself; empty where it will.
    const std::string& unfound() const { return unfound_; }

private:
    bool begin();
    bool addItem(UndoItem::Kind kind, const std::string& name, const EntryState& state);
    bool addParent(const std::string& name);
    bool addMade(const std::string& name);
    void addTwins(const std::string& name);
    bool findOtherName(const std::string& directory, const std::string& name, const EntryState& state,
                       std::string& found) const;
    bool makeFile();
    bool makeIn(const std::string& directory, const std::string& full);
    bool makeUnder(const std::string& path, const std::string& link);
    bool append();
    void putBack() const;
    bool failed(const std::string& what);
    std::string under(const std::string& name) const { return name.empty() ? root_ : root_ + "/" + name; }

    std::string root_;
    std::string wanted_; // the path that was given
    std::string path_;
    std::string failure_;
    std::string unfound_;
    UndoHeader header_;
    UndoHeader standing_; // as it is in the file
    std::string content_; // of the file that addKeys is at
    Encoder group_;       // of a new file with what stands in front of the first group
    std::uint32_t changes_ = 0;
    std::set<std::string> parents_; // directories whose times are in the file or the group
    std::vector<std::string> makings_;
    std::map<std::string, std::vector<std::string>> listings_; // of directories in which the group deletes
};
