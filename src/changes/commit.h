// Carries out groups of changes: each group is kept in the undo file and announced in the database first, and
// done or known to be undone in the end.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "changes/atwork.h"
#include "changes/undowriter.h"

struct CommitOptions {
    bool keepundo = true;
    std::string undofile = {}; // where to; empty: into the user's state directory
    bool isrestore = false;
    bool ask = false; // the person, where no undo file can be written; else the changes are refused
    // Asked before each commit whether the database is still held; none: it always is.
    std::function<Failure()> holds = {};
};

class Committer {
public:
    Committer(std::shared_ptr<Tree> tree, CommitOptions options)
        : tree_(std::move(tree)), options_(std::move(options)),
          writer_(options_.undofile, options_.isrestore) {}

    // Carries out a group that has been looked at since the last begin of the tree. True: all of it that
    // could be done is done; each change tells whether it was made, and failures has the reason of each that
    // was not. False: nothing was done, and why was told.
    bool commit(std::vector<Change>& group, std::vector<Failure>& failures);

    // An earlier commit that could not put all on the disk is carried out again; what it made since is added
    // to done. False where it still can't, which was told.
    bool completeopen(std::vector<Change>& done);
    bool isopen() const { return !open_.empty(); }

    std::string closed; // why nothing may be changed in this run; empty: it may
    const std::string& undopath() const { return writer_.path(); } // empty while there is no file
    std::uint32_t groups() const { return writer_.group(); }       // that are in it
    const CommitOptions& options() const { return options_; }

private:
    bool refuse(const std::string& why) const;
    bool goOnWithout(const std::string& why) const;
    bool journal(std::vector<Change>& group);
    bool announce();
    bool end();

    std::shared_ptr<Tree> tree_;
    CommitOptions options_;
    UndoWriter writer_;
    AtWork atwork_;
    std::vector<Change> open_; // of which it is not known that it is on the disk
};
