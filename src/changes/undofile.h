// An undo file: a header, and after it frames with what stood before each change, group by group.
// docs/formats.md tells the form. Each operation with a text as its answer gives an empty one on success,
// else what could not be done and why.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "changes/change.h"
#include "platform/system/tree.h"

struct UndoHeader {
    static constexpr std::size_t size = 80;
    static constexpr std::uint32_t never = 0xFFFFFFFF;

    std::uint64_t length = size;   // bytes of the file that count
    std::uint64_t finished = size; // bytes of the groups that are finished
    std::uint64_t number = 0;      // at random, so that no other file is taken for this one
    std::int64_t time = 0;         // of the clock when it was made, in seconds since 1970
    std::uint32_t keys = 0;        // changes of each kind
    std::uint32_t deletions = 0;
    std::uint32_t makings = 0;
    std::uint32_t restoredfrom = never; // the group, from 1, from which on all was taken back
    std::uint32_t isrestore = 0;        // 1: the changes took back those of another undo file

    bool isopen() const { return finished < length; }
    bool isempty() const { return keys == 0 && deletions == 0 && makings == 0; }
    std::string encode() const;
    bool decode(std::string_view bytes); // false: this is no sound header
};

// A directory in which entries come or go, with its times before.
struct DirectoryTimes {
    std::string name;
    FileState state;
};

struct UndoGroup {
    std::uint64_t end = 0; // offset behind it in the file
    std::vector<Change> changes;
    std::vector<DirectoryTimes> directories;
};

struct UndoFile {
    std::shared_ptr<const File> file;
    UndoHeader header;
    std::string directory; // of the database, for the person's eyes
    std::string program;   // that made the changes, with its version
    std::vector<UndoGroup> groups;
};

// Opens an undo file under its name in the tree; a link to a file elsewhere is read and followed.
Failure openundofile(Tree& tree, const std::string& name, bool towrite, File& file);
// Opens an undo file of the user's own and tests all of it.
std::string readundofile(Tree& tree, const std::string& name, UndoFile& undo);
std::string readundofile(const std::string& path, UndoFile& undo);
// The header and the directory alone.
std::string readundohead(Tree& tree, const std::string& name, UndoFile& undo);

// Appends the frames of a group to an open undo file, at a position which then stands behind them. Contents
// of deletions are read from the database.
std::string writegroup(const File& undo, std::int64_t& position, Tree& database, std::vector<Change>& group,
                       const std::vector<DirectoryTimes>& directories);
Failure writehead(const File& undo, std::int64_t& position, const std::string& directory);
