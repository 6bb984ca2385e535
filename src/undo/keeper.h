// Keeps what is needed to undo the changes of a run: before the first change of each group all of it stands
// in the undo file of the run, on the disk itself.
#pragma once

#include <memory>
#include <string>

#include "model/change.h"
#include "undo/undowriter.h"

class UndoKeeper : public ChangeKeeper {
public:
    enum class WithoutPlace { refuse, ask };

    // The undo file goes into the user's state directory, or under the path where one is given, where nothing
    // may stand yet. Where it can't be written, the changes are refused, or the person is asked whether to go
    // on without.
    UndoKeeper(const std::string& root, WithoutPlace withoutPlace, const std::string& path = "");

    bool before(const std::vector<Change>& group) override;
    void after() override;
    const std::string& path() const { return writer_.path(); } // of the undo file; empty while there is none

private:
    using Changes = std::vector<Change>::const_iterator;
    bool add(const std::vector<Change>& group);
    bool addFile(Changes first, Changes last);
    bool addKeys(Changes first, Changes last);
    bool goOnWithout() const;

    UndoWriter writer_;
    std::vector<NewField> fields_; // of the file at work; stays, since a million would be allocated anew
    WithoutPlace withoutPlace_;
    bool waiting_ = false; // a group has been kept and is being done
};
