#include "model/change.h"

#include <utility>

Change filechange(Change::Kind kind, std::string file) {
    Change change;
    change.kind = kind;
    change.file = std::move(file);
    return change;
}

std::string describe(const Change& change) {
    switch (change.kind) {
    case Change::deletion:
        return "*** Deleted '" + change.file + "' ***";
    case Change::making:
        return "*** Made '" + change.file + "' ***";
    case Change::key:
        break;
    }
    return "*** Changed key '" + change.oldkey + "' to '" + change.newkey + "' in '" + change.file +
           "', record " + std::to_string(change.record) + " ***";
}
