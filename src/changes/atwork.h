// The small file that stands in a database while a change of it is at work. It alone says that one was
// interrupted: whoever finds it without its lock, from wherever, knows by it whose change that was.
#pragma once

#include <cstdint>
#include <string>

#include "platform/system/tree.h"

struct ChangeAtWork {
    std::string undo;         // name of the undo file in the user's state directory; empty: none
    std::uint64_t number = 0; // of that file
    std::uint32_t group = 0;  // in it, from 1
    std::string user, host;
    std::int64_t time = 0; // seconds since 1970
    std::string directory; // the database's directory, as that user sees it

    std::string who() const; // "by alice at 2026-11-25 21:40 on lab3 in /data/strains"
};

class AtWork {
public:
    static constexpr const char* name = "changing_db.txf";

    // Makes it, locked and on the disk itself. 183 where one of another run stands there. After another
    // failure it may stand all the same, where the disk does not let it be taken away.
    Failure begin(Tree& tree, const ChangeAtWork& change);
    // Takes over one that an earlier run has left. 32 where another has it.
    Failure adopt(Tree& tree);
    Failure end(Tree& tree); // takes it away again
    bool stands() const { return file_.isOpen(); }

private:
    File file_;
};

enum class Trace {
    none,
    begun,       // it was not written to its end: nothing was changed
    locked,      // its change is at work
    interrupted, // the change stands in it
};
// What an earlier run has left there. With none of it 2 is no failure.
Failure readtrace(Tree& tree, Trace& trace, ChangeAtWork& change);
