// The whole model of one database: file lists, experiment types, key index, key arrays and problem list. Its
// operations are in database.cpp and sidefiles.cpp beside it, and in the sources of analysis.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "changes/commit.h"
#include "model/exptype.h"
#include "model/filelist.h"
#include "model/keytree.h"
#include "platform/system/cobject.h"
#include "platform/system/text.h"

class TSXdatafile;
class TSXfinder;
class TSXkeyentry;
class TSXproblem;

constexpr int maxtypes = 200; // besides type 0

// Texts side by side that are let go in one step. None moves or goes as long as the store is there.
class TextStore {
public:
    // A copy of the text with a terminator after it.
    std::string_view keep(std::string_view text) {
        char* const copy = static_cast<char*>(bytes_.allocate(text.size() + 1, 1));
        copy[text.copy(copy, text.size())] = '\0';
        return {copy, text.size()};
    }

private:
    std::pmr::monotonic_buffer_resource bytes_;
};

// What could not be read, or was left out, while a database was looked at. It is neither empty nor damaged:
// no repair acts on it and no save writes it.
struct Unread {
    enum Weight : std::uint8_t {
        told,  // a second name, or one that opens another file: refuses nothing, changes no status
        part,  // a record, a side file, a directory without data files: itself left alone, the rest can be
               // repaired
        whole, // a data file, a directory of data files, a type: without it no other key can be judged
    };

    // Relative to the database's directory, spelled as on the disk; a type after its folder.
    std::string name;
    std::string reason; // a sentence in English without line end
    Weight weight = part;
    std::int32_t record = 0; // of a record in a data file, from 1; else 0, or
    static constexpr std::int32_t type = -1;
    bool lasting = true; // found by the load; else by the last analysis, and looked at anew by the next
};

class TSXdatabase : public CObject {
public:
    explicit TSXdatabase(const char* datadirectory); // kept as datapath, which nothing reads; touches no file
    ~TSXdatabase() override;

    // Reads the tree and analyses it. Runs once.
    void load(const char* directorytext);
    // The first half of that: makes the lists, which read the files.
    void readlists(const char* directorytext);
    // What another program has done to the data files since they were read, as it stands since the last begin
    // of the tree: a text for each.
    std::vector<std::string> changedsince() const;
    // Reads those anew, and what could not be read before; keys in other files that are not saved stay. An
    // analysis has to follow, before which no key entry may be used.
    void reread();
    // The index of the type of that name, ignoring case, in that class, made if missing. With 200 types
    // there, the last.
    int addexptype(int fileclass, std::string_view name);
    void forgettypes(std::int32_t last);             // takes all after that one off again
    TSXexptype* gettype(int index) const;            // none unless index is from 0 to lasttype
    TSXkeyentry* getvisiblekey(int index) const;     // none unless index is from 1 to visiblecount
    TSXkeyentry& findoraddkey(std::string_view key); // a new one goes to the end of both key arrays

    // Problems, from 1 to problemcount.
    void addproblem(std::unique_ptr<TSXproblem> problem);
    TSXproblem* getproblem(int index) const; // none if out of range
    void clearproblems();

    // What could not be read, in the order of the reading; a line in the log for each.
    void addunread(Unread thing);
    // The same for a path below the database's directory.
    void addunreadpath(std::string_view fullpath, const std::string& reason, Unread::Weight weight,
                       std::int32_t record = 0);
    // The same for what a search could not read of its directory, given below the database's, and what it
    // passed over.
    void notesearch(const TSXfinder& search, const char* relative, Unread::Weight weight);
    // The same for the directories beside one of the database's whose names differ from its own in case
    // alone.
    void notetwins(const std::string& name, Unread::Weight weight);
    // The same for the link through which a match lies outside of the database, once for each.
    void noteoutside(const TSXfinder& match);
    void forgetrecords(const std::string& name); // takes the records of a data file off the list
    void forgettold(std::string_view fullpath);  // and what was told of a name that was passed over
    // False while something of weight whole is unread: no key can be judged then.
    bool picturecomplete() const;
    // Whether a directory of entries or experiments that a database must have was missing at the load, as it
    // is where a share isn't mounted: the keys in it are unknown then.
    bool directorymissing() const;
    int unreadcount() const; // how many things could not be read, those that are only told left out
    bool isunread(std::string_view fullpath) const; // whether that file or directory could not be read
    // The name of a path relative to the database's directory, as it is spelled on the disk; "." for itself.
    std::string diskname(std::string_view fullpath) const;
    // Keeps a change that was made, and writes its lines to the log; while planning, one that would have
    // been.
    void addchange(Change change);

    // Adds a problem for each damaged file with that extension in a directory relative to the database's.
    void scansidefiles(const char* relative, const char* extension, const char* header);
    void lookatsidefile(const TSXfinder& match, const char* path, const char* header);
    void checkdirectory(const char* fullpath); // adds a problem if it can't be entered
    // Rebuilds the index, the counts, the visible keys and the problem list from memory; looks at the disk
    // only for side files and directories. Pointers to problems and keys from before are invalid after it.
    // What hangs on the keys alone is kept where none has changed since the last one.
    void analyse();
    void keyschanged() { keysjudged = false; } // a key table or the list of valid files is another now
    void showallkeys();                        // makes every key visible until the next pass

    // Repairs. They leave the data files right; an analysis has to follow. Deleting and making happen at once
    // on disk, keys change in memory. Results: 1 success, 0 failure, which was told.
    void removeduplicates(int type);
    void renameduplicates(int type);
    void createkeys();
    void removeexperimentkeys();
    void adddatabaseentries();
    // The solutions of several problems that delete or make, as one group. Of each 1 done, 0 failed, 2 what
    // was to go had gone. The problems are those of the last analysis.
    std::vector<int> solvetogether(const std::vector<const TSXproblem*>& chosen);
    // Moves occurrence n of the entry in a type to another key; asks where that is in use there. 1 moved; 0
    // nothing to do, the text is the entry's key; -1 refused, by the person, for its length, because the
    // record could not be read or because there is no such occurrence.
    int changekey(TSXkeyentry& entry, int type, int n, const char* text);
    // Gives all records that use the entry another key. 1 done; 0 nothing to do, the text is the entry's key;
    // -1 refused, since the text is in use or too long, or records that may use the key are unread.
    int renamekey(const TSXkeyentry& entry, const char* text);

    int ismodified() const; // 1 if any record differs from the disk, else 0
    // What an earlier commit has written, and the disk has confirmed only now. False where it still has not,
    // which was told.
    bool completeearlier();
    // Brings every changed key to the disk. 1 if nothing is left unsaved; else 0: what could not be saved has
    // been told and stays changed. While planning nothing is written, and the result is what it would be.
    int saveall();

    TextStore keytexts; // the keys of all data files, also those that were changed since
    Text<600> datapath;
    Text<600> directory; // every path of the tree starts from it
    std::int32_t lastlist = 0;
    std::vector<std::unique_ptr<TSXfilelist>> lists; // by file class, from 0 to lastlist
    std::int32_t lasttype = 0;
    std::vector<std::unique_ptr<TSXexptype>> types; // from 0, "Database", to lasttype
    TSXkeytree keytree;
    std::int32_t keytotal = 0;
    std::int32_t visiblecount = 0;
    std::vector<TSXkeyentry*> keyarray;    // all keys in order, from 1 to keytotal
    std::vector<std::int32_t> visiblekeys; // indices into keyarray, from 1 to visiblecount
    std::int32_t problemcount = 0;
    std::vector<std::unique_ptr<TSXproblem>> problems; // from 1 to problemcount; slot 0 holds nothing

    std::vector<Unread> unread;
    std::vector<std::string> leftout; // what the solution at work has left, since it is never changed

    // What was changed on the disk, in this order; while planning, what would be.
    std::vector<Change> changes;
    bool planning = false; // true: nothing is written, deleted or made
    // The directory, held open; opened by the load where the program has not.
    std::shared_ptr<Tree> tree = std::make_shared<Tree>();
    // By which all changes are made; set by the program, else without an undo file.
    std::unique_ptr<Committer> committer;

    // Called, where set, after each data file that load has read.
    std::function<void(const TSXdatafile&)> fileread;
    // The same before a record gets that key in memory.
    std::function<void(const TSXdatafile&, int record, std::string_view key)> keychanging;
    // The same while analyse judges the keys, with a percentage.
    std::function<void(int)> judged;

private:
    bool keysjudged = false;                      // the index, and what follows, are of these key tables
    std::vector<std::pair<int, int>> keyproblems; // kinds and types that were found in them
    bool looking = false; // at what each analysis looks at anew, so that what is unread of it doesn't last

    std::unordered_map<TypeName, int, TypeName::Hash> typenumbers;
    std::unordered_set<std::string> unreadnames;  // of the files and directories in unread
    std::unordered_set<std::string> outsidelinks; // that were told

    void notetwin(const std::string& twin, const std::string& read, Unread::Weight weight);
    void lookatdisk();  // side files and directories
    void forgetlooks(); // takes what the last look could not read off the list
    void scanlibraries();
    void judgekeys();
    void indexfiles();
    void countfile(const TSXdatafile& file);
    void findproblems();
};
