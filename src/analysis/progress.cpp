#include "analysis/progress.h"

#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "platform/system/letters.h"

namespace {

bool hasExtension(const std::string& name, const char* extension) {
    const std::string end = std::string(".") + extension;
    return name.size() >= end.size() && equalIgnoringCase(name.substr(name.size() - end.size()), end);
}

} // namespace

Progress::Progress(TSXdatabase& loaded, Show shown) : database(loaded), show(std::move(shown)) {
    std::vector<std::string> names;
    for (const FileClass& format : fileclasses)
        if (!database.tree->names(format.directory, names))
            total += std::count_if(names.begin(), names.end(), [&](const std::string& name) {
                return hasExtension(name, format.extension);
            });
    database.fileread = [this](const TSXdatafile& file) { read(file); };
    database.judged = [this](int percent) {
        show(percent, Text<100>().format("Judging %ld records %3d %% ", records, percent).c_str());
    };
}

Progress::~Progress() {
    database.fileread = nullptr;
    database.judged = nullptr;
}

void Progress::read(const TSXdatafile& file) {
    ++files;
    records += file.keycount;
    const long percent = 100 * files / std::max(total, files);
    if (files % 16 == 1)
        show(static_cast<int>(percent),
             Text<100>()
                 .format("Reading %-6s %3ld %%  %ld files, %ld records ", fileclasses[file.classid].directory,
                         percent, files, records)
                 .c_str());
}
