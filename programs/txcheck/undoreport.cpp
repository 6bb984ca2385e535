#include "undoreport.h"

#include <iostream>

#include "changes/undodirectory.h"
#include "documentform.h"
#include "ending.h"
#include "shown.h"
#include "textform.h"
#include "told.h"

namespace {

void fillWords(std::string& text, const UndoListEntry& entry) {
    const std::string state = entry.state();
    addLine(text, entry.what() + (state.empty() ? state : " (" + state + ")"));
    addLine(text, "in " + entry.directory);
    addLine(text, "txcheck --restore " + shellWord(entry.path));
    addLine(text, "kept until " + timetext(entry.maygo).substr(0, 10) + " or longer, " +
                      std::to_string(entry.size) + " bytes");
}

void fillEntry(Row& row, const UndoListEntry& entry) {
    const UndoHeader& header = entry.header;
    row.text("file", "", entry.path).number("time", "", entry.time);
    row.text("directory", "", entry.directory).number("size", "", entry.size);
    row.number("keys", "", header.keys).number("deleted", "", header.deletions);
    row.number("made", "", header.makings).truth("open", header.isopen());
    row.truth("restore", header.isrestore == 1).truth("restored", header.restoredfrom != UndoHeader::never);
    row.number("maygo", "", entry.maygo).text("damage", "", entry.damage);
    if (!entry.damage.empty())
        row.text("", "Damage", entry.path + ": " + entry.damage);
    else
        fillWords(row.text("", "Made", timetext(entry.time), 19).lines("Change"), entry);
}

} // namespace

int writeUndoList(const std::string& directory, bool asDocument) {
    Tree undos;
    if (const Failure failure = openundodirectory(undos, false); failure && !failure.isAbsence()) {
        tell("The directory of the undo files, " + undodirectory() + ", can't be entered, or is a link (" +
             failure.text() + ")");
        return statusFailed;
    }
    const std::vector<UndoListEntry> entries = listundofiles(directory);
    Section list{"undo", "", "Undo files, the oldest first", Section::list, eachOf(entries, fillEntry)};
    if (asDocument)
        writeDocument(std::cout, {list}, false);
    else if (entries.empty())
        std::cout << "There are no undo files" << (directory.empty() ? "" : " about this directory") << ".\n";
    else
        writeText(std::cout, "", {list});
    std::cout.flush();
    if (std::cout)
        return statusClean;
    tell("The list could not be written to standard output");
    return statusFailed;
}
