#include "progress.h"

#include <algorithm>

#include "model/datafile.h"
#include "model/fileclass.h"
#include "platform/system/letters.h"
#include "told.h"

namespace {

bool hasExtension(const std::string& name, const char* extension) {
    const std::string end = std::string(".") + extension;
    return name.size() >= end.size() && equalIgnoringCase(name.substr(name.size() - end.size()), end);
}

} // namespace

Progress::Progress(Tree& tree) {
    std::vector<std::string> names;
    for (const FileClass& format : fileclasses)
        if (!tree.names(format.directory, names))
            total += std::count_if(names.begin(), names.end(), [&](const std::string& name) {
                return hasExtension(name, format.extension);
            });
}

void Progress::show(const TSXdatafile& file) {
    ++files;
    records += file.keycount;
    const long percent = 100 * files / std::max(total, files);
    if (files % 16 == 1)
        tellProgress(Text<100>()
                         .format("Reading %-6s %3ld %%  %ld files, %ld records ",
                                 fileclasses[file.classid].directory, percent, files, records)
                         .view());
}
