// How one change is carried out: what stands there is looked at, then each part is written in which no
// foreign bytes stand, and put on the disk.
#pragma once

#include <string>
#include <vector>

#include "changes/change.h"
#include "platform/system/tree.h"

// The state of what has that very name: one in other letters is another. A link at its end is not followed.
Failure lookexactly(Tree& tree, const std::string& name, FileState& state);

// Fills in what stands there now: which file it is, and each part. A file that is away is a failure for keys
// alone.
Failure look(Tree& tree, Change& change);
// Carries out a group that was looked at: all parts but those where other bytes stand; also what reads as it
// is to be, since it may only be in memory. Of a change nothing is done (ERROR_FILE_INVALID) where another
// file stands there or it was changed since it was looked at. Puts the names of its directories on the disk.
// Gives each change its failure and what stands there now, and whether something may stand otherwise on the
// disk than it reads: it is to be carried out again.
bool applyall(Tree& tree, std::vector<Change>& group, std::vector<Failure>& failures);

// What bytes that were found are at a field.
Standing standingof(std::string_view found, const KeyField& field);

bool all(const Change& change, Standing standing); // of the parts
bool any(const Change& change, Standing standing);
bool isdone(const Change& change); // all stand as they are to be

// One key that is to be changed in a data file, as it was read.
struct NewKey {
    std::int32_t record = 0;
    std::int64_t offset = 0;
    std::string_view oldkey, newkey; // at most 60 bytes
};

// Makes the change of keys of a file from what stands there now. Left gets a text for each that can't be
// changed, and the rest are in the change. A text instead where the file as a whole can't: it can't be opened
// for writing, or is not as it was when it was read.
std::string draftkeys(Tree& tree, const FileState& onread, const std::vector<NewKey>& keys, Change& change,
                      std::vector<std::string>& left);

// Fills in what stands there now of an entry that is to go: 2 where it has gone, ERROR_FILE_INVALID where it,
// or the file that a link leads to, was changed since it was known; that of no file is not compared.
Failure draftdeletion(Tree& tree, const FileStamp& known, Change& change);
