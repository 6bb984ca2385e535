// An open file, and one that is being made. Reads and writes go by positions; a call that a signal
// interrupts, or that does a part of its work, is made again for the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/system/errors.h"
#include "platform/system/filestate.h"

struct OpenDirectory;

enum class Links { followed, unfollowed }; // at the end of a name; on the way they are always followed

// An operation on a closed file is a failure.
class File {
public:
    File() = default;
    explicit File(int descriptor, const FileState& opened = {}) : descriptor_(descriptor), opened_(opened) {}
    File(File&& other) noexcept { *this = std::move(other); }
    File& operator=(File&& other) noexcept;
    ~File();

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    int release() { return std::exchange(descriptor_, -1); } // the descriptor, which is the caller's then
    const FileState& opened() const { return opened_; }      // which file it is, and how it stood at the open
    Failure state(FileState& state) const;
    // At most count bytes from a position; fewer only where the file ends.
    Failure read(std::int64_t position, std::size_t count, std::string& bytes) const;
    Failure write(std::int64_t position, std::string_view bytes) const; // all, or a part and a failure
    Failure cut(std::int64_t size) const;
    Failure permit(std::uint32_t permissions) const; // the twelve bits
    Failure sync() const;
    Failure close(); // a file system of another machine may say only now that it is full
    // Where the next bytes from a position on lie that are no hole: start and end. At or beyond the size,
    // where there are no more.
    Failure data(std::int64_t position, std::int64_t& start, std::int64_t& end) const;
    // OFD locks on the whole file. 32 where another holds it; 50 where the file system can't lock.
    Failure lock() const;
    Failure lockedForWriting(bool& locked) const;
    Failure attributes(std::vector<Attribute>& attributes) const; // extended ones; of a link none
    // Gives owner, permissions, extended attributes and times. What can't be given is left, and a failure;
    // set-id bits and attributes of the system's security are never given.
    Failure give(const FileState& state, const std::vector<Attribute>& attributes) const;
    Failure giveTimes(const Moment& read, const Moment& changed) const;

private:
    int descriptor_ = -1;
    FileState opened_;
};

// A plain file without a name, or under a temporary one where the file system has no such files, until it is
// kept. Where that knows no second names either it has its own from the start. What is not kept goes.
class NewFile {
public:
    NewFile() = default;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    File file;
    // Puts the content on the disk, if that is asked for, and gives the file its name; 183 where an entry has
    // it by now, which is never replaced. The names of the directory are synced by the caller.
    Failure keep(bool sync = true);

private:
    friend class Tree;
    std::shared_ptr<OpenDirectory> directory_;
    std::string name_;
    std::string standing_; // the name that it has meanwhile; empty: none
    bool kept_ = false;
};
