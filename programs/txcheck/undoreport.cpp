#include "undoreport.h"

#include <ctime>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

#include "reporting/printable.h"
#include "shown.h"
#include "status.h"
#include "told.h"
#include "undo/undolist.h"

namespace {

std::string timeText(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm parts = {};
    char text[40] = {};
    if (localtime_r(&time, &parts) != nullptr)
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return text;
}

void writeEntry(std::ostream& out, const UndoListEntry& entry) {
    if (!entry.damage.empty()) {
        out << printable(entry.path) << ": " << entry.damage << '\n';
        return;
    }
    out << timeText(entry.time) << std::setw(9) << entry.changes << " changes" << std::setw(12) << entry.size
        << " bytes  " << printable(entry.directory) << "  " << printable(entry.path)
        << (entry.open ? "  (interrupted, or at work)\n" : "\n");
}

nlohmann::ordered_json jsonOf(const UndoListEntry& entry) {
    return {{"file", shown(entry.path)}, {"time", entry.time},       {"directory", shown(entry.directory)},
            {"size", entry.size},        {"changes", entry.changes}, {"open", entry.open},
            {"damage", entry.damage}};
}

} // namespace

int writeUndoList(std::ostream& out, bool json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const UndoListEntry& entry : listUndoFiles())
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
