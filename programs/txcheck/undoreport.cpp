#include "undoreport.h"

#include <ctime>
#include <iostream>

#include "changes/place.h"
#include "documentform.h"
#include "ending.h"
#include "shown.h"
#include "textform.h"
#include "told.h"

namespace {

std::string timeText(std::int64_t seconds, const char* format) {
    const std::time_t time = seconds;
    std::tm parts = {};
    char text[40] = {};
    if (localtime_r(&time, &parts) != nullptr)
        std::strftime(text, sizeof text, format, &parts);
    return text;
}

std::string stateOf(const UndoHeader& header) {
    std::string state = header.isrestore == 1 ? "; a restore" : "";
    if (header.restoredfrom != UndoHeader::never)
        state += header.restoredfrom == 1 ? "; restored" : "; restored in part";
    if (header.isopen())
        state += "; interrupted, or at work";
    return state.empty() ? state : " (" + state.substr(2) + ")";
}

void fillWords(std::string& lines, const UndoListEntry& entry) {
    const UndoHeader& header = entry.header;
    addLine(lines, summaryof(header.keys, header.deletions, header.makings) + stateOf(header));
    addLine(lines, "in " + entry.directory);
    addLine(lines, "txcheck --restore " + shellWord(entry.path));
    addLine(lines, "kept until " + timeText(entry.maygo, "%Y-%m-%d") + " or longer, " +
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
        fillWords(row.text("", "Made", timeText(entry.time, "%Y-%m-%d %H:%M:%S"), 19).lines("Change"), entry);
}

} // namespace

int writeUndoList(const std::string& directory, bool asDocument) {
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
