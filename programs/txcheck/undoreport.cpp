#include "undoreport.h"

#include <ctime>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "changes/place.h"
#include "reporting/printable.h"
#include "shown.h"
#include "status.h"
#include "told.h"

namespace {

std::string timeText(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm parts = {};
    char text[40] = {};
    if (localtime_r(&time, &parts) != nullptr)
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return text;
}

std::string stateOf(const UndoListEntry& entry) {
    const UndoHeader& header = entry.header;
    std::string state = header.isrestore == 1 ? "a restore" : "";
    if (header.restoredfrom != UndoHeader::never)
        state += std::string(state.empty() ? "" : "; ") +
                 (header.restoredfrom == 1 ? "restored" : "restored in part");
    if (header.isopen())
        state += std::string(state.empty() ? "" : "; ") + "interrupted, or at work";
    return state;
}

void writeEntry(std::ostream& out, const UndoListEntry& entry) {
    if (!entry.damage.empty()) {
        out << printable(entry.path) << ": " << entry.damage << '\n';
        return;
    }
    const std::string state = stateOf(entry);
    out << timeText(entry.time) << "  "
        << summaryof(entry.header.keys, entry.header.deletions, entry.header.makings)
        << (state.empty() ? "" : " (" + state + ")") << "\n    in " << printable(entry.directory)
        << "\n    txcheck --restore " << printable(shellWord(entry.path)) << "\n    kept until "
        << timeText(entry.maygo).substr(0, 10) << " or longer, " << entry.size << " bytes\n";
}

nlohmann::ordered_json jsonOf(const UndoListEntry& entry) {
    const UndoHeader& header = entry.header;
    return {{"file", shown(entry.path)},
            {"time", entry.time},
            {"directory", shown(entry.directory)},
            {"size", entry.size},
            {"keys", header.keys},
            {"deleted", header.deletions},
            {"made", header.makings},
            {"open", header.isopen()},
            {"restore", header.isrestore == 1},
            {"restored", header.restoredfrom != UndoHeader::never},
            {"maygo", entry.maygo},
            {"damage", entry.damage}};
}

} // namespace

int writeUndoList(std::ostream& out, const std::string& directory, bool json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    const std::vector<UndoListEntry> entries = listundofiles(directory);
    if (entries.empty() && !json)
        out << "There are no undo files" << (directory.empty() ? "" : " about this directory") << ".\n";
    for (const UndoListEntry& entry : entries)
        if (json)
            list.push_back(jsonOf(entry));
        else
            writeEntry(out, entry);
    if (json)
        out << escaped(nlohmann::ordered_json({{"undo", list}}).dump(1)) << '\n';
    out.flush();
    if (out)
        return statusClean;
    tell("The list could not be written to standard output");
    return statusFailed;
}
