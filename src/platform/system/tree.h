// A directory held open, the names known below it, and what is planned there. What is done in a database
// takes a name below its directory and goes from one open directory to the next; a link is read and walked by
// the same code. So nobody who moves names meanwhile leads it elsewhere, and what was judged is what is acted
// on.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/errors.h"
#include "platform/system/file.h"
#include "platform/system/filestate.h"

// Of what is made: owner, group and rights as its directory has them, or its default ACL gives them; the
// user's alone; or what the user's settings leave.
enum class Rights { asDirectory, ownerOnly, usual };

// What is made shows when it is kept; or, where no file can be without a name, empty at once.
enum class Appears { whole, atOnce };

// What stands under a name.
struct Entry {
    FileState state;     // missing where nothing stands there, or it counts as gone
    std::string name;    // below the directory, spelled as on the disk
    std::string outside; // the link, below the directory, that leads out of it; empty: it is inside
};

// Names have / or \ as separators. A component is taken as it stands, else as the first that equals it
// ignoring the case of ASCII letters. An operation that changes something refuses what lies outside (5).
class Tree {
public:
    Tree();
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree();

    // Holds the directory; links in its own path are followed. Only on a tree that is closed.
    Failure open(const std::string& path);
    // Holds the directory of a file, and gives the name of the file in it.
    Failure openDirectoryOf(const std::string& path, std::string& name);
    bool isOpen() const;
    const std::string& path() const;           // as it was given
    Failure fullPath(std::string& full) const; // from the root, through no link
    // Begins a load, an analysis or a commit: directories below are opened, and names read, anew and once. A
    // failure (3) where the path does not lead to the held directory any more: all operations give it then,
    // until it does again at a begin.
    Failure begin();

    // The name below the directory of a path that begins with path(); "." for that itself. Looks at nothing.
    std::string below(std::string_view path) const;
    // The same, spelled as on the disk; what is not there keeps its name.
    std::string spelled(std::string_view path);

    // What stands there; nothing is no failure.
    Failure look(std::string_view name, Links links, Entry& entry);
    // The names in a directory, in the order of searches: ascending, ASCII small letters counted as capitals,
    // then by their plain bytes.
    Failure names(std::string_view directory, std::vector<std::string>& names);
    // Calls visit with each entry of the directory and of 32 levels below, as far as they can be read.
    void lookThrough(const std::function<void(const Entry&)>& visit, const std::string& directory = ".");
    // Whether no other entry of its directory equals the last component ignoring case, by the names that were
    // read since the begin. 183 where there is one.
    Failure standsAlone(std::string_view name);
    // A directory can be entered (3 where none stands there).
    Failure enter(std::string_view directory);

    // Opens a plain file; never waits. Links at the end are followed as told.
    Failure openToRead(std::string_view name, File& file, Links links = Links::followed);
    // The same for reading and writing in place.
    Failure openToWrite(std::string_view name, File& file, Links links = Links::followed);
    // Appends to a plain file, which is made where it is missing, in one piece: an open, a write and a close,
    // and nothing else, since a log does this for each of its lines. A link is refused.
    Failure append(std::string_view name, std::string_view bytes);
    // Puts a plain file with that content in the place of the one that has the name, or of none: whole and on
    // the disk itself, or not at all. Anything else there is refused (5), a link too.
    Failure replace(std::string_view name, std::string_view bytes);
    Failure readLink(std::string_view name, std::string& target);
    // Opens whatever stands there, to ask or to give what belongs to it beside its content.
    Failure openEntry(std::string_view name, File& file, Links links = Links::unfollowed);

    // Makes a plain file that does not show before keep. 183 where any entry has that very name.
    Failure make(std::string_view name, NewFile& file, Rights rights = Rights::asDirectory,
                 Appears appears = Appears::whole);
    // Where no file can be without a name, it stands under a temporary one with that number until it is kept;
    // with 0, with one drawn at random.
    void numberTemporaries(std::uint64_t number);
    void removeTemporaries(std::uint64_t number); // which an interrupted run has left
    Failure makeDirectory(std::string_view name); // 183 where any entry has that name ignoring case
    Failure makeLink(std::string_view name, const std::string& target);
    Failure addName(std::string_view name, std::string_view existing); // a second name of one file
    // Takes a plain file or a link away, if it is still the one that was judged: ERROR_FILE_INVALID where it
    // is another, 2 where there is none. No file of it may be open here.
    Failure remove(std::string_view name, const FileState& judged);
    Failure removeDirectory(std::string_view name); // an empty one
    // Puts the names in the directory of an entry on the disk itself.
    Failure syncDirectoryOf(std::string_view name);
    // Whether names in the directory of an entry can be made and taken away.
    Failure mayChangeDirectoryOf(std::string_view name);

    // Counts an entry as gone, or a directory as there. Fails as the operation itself would.
    Failure planRemoval(std::string_view name, const FileState& judged);
    Failure planDirectory(std::string_view name);

private:
    Failure openFile(std::string_view name, File& file, Links links, int flags);

    struct Inside;
    std::unique_ptr<Inside> inside_;
};
