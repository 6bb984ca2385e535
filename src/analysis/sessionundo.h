// What was changed in this session, step by step, and can be taken back, the last first: solutions that act
// at once and saves by the undo file of the session, changed keys in memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class TSXdatabase;
class TSXdatafile;

class SessionUndo {
public:
    // The database lives longer. All changes of keys are noted as long as this stands.
    explicit SessionUndo(TSXdatabase& database);
    SessionUndo(const SessionUndo&) = delete;
    SessionUndo& operator=(const SessionUndo&) = delete;
    ~SessionUndo();

    // What was changed since the last call is one step, of that name ("deleted 5 files"); nothing where
    // nothing was. What a save has written is taken back by it, and by no step before it any more.
    void noteStep(const std::string& name);
    std::string next() const { return steps.empty() ? "" : steps.back().name; } // empty: nothing is left
    // Takes that step back; an analysis has to follow, before which no key entry may be used. False where
    // nothing of it was taken back, which was told; it can be tried again.
    bool takeBack();

private:
    struct KeyChange {
        int fileclass;
        std::string file; // base name
        std::int32_t record;
        std::string before, after;
    };
    struct Step {
        std::string name;
        std::uint32_t group = 0; // the first in the undo file; 0: in memory alone
        std::vector<KeyChange> keys;
    };

    bool restoreFrom(std::uint32_t group);
    void giveBack(const KeyChange& change);

    TSXdatabase& database;
    std::vector<KeyChange> noted; // since the last step
    std::size_t changes;          // of the disk, up to the last step
    std::uint32_t groups;         // the same
    std::vector<Step> steps;
};
