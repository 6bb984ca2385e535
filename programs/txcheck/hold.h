// The exclusive hold of a database for the time of a run.
#pragma once

#include <string>

#include "platform/system/hold.h"
#include "platform/system/tree.h"

class Hold {
public:
    enum class Marker {
        made,    // where there is none, it is made
        present, // the one that is there is held; none is made
        left,    // no hold is taken
    };

    Hold() = default;
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    ~Hold();

    // Makes sure that a database is there and can be read, and takes hold of it. False when that can't be
    // done, which has been told; nothing has been touched then.
    // The tree is opened.
    bool take(Tree& tree, const std::string& directory, Marker wish);
    Failure stands() const; // whether it is still held, looked at anew

private:
    bool lock(Tree& opened, const std::string& directory);

    HANDLE marker = INVALID_HANDLE_VALUE;
    Tree* tree = nullptr;
};
