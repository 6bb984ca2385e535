// The save: all changes are collected and compared with the disk first, then the person's undo is seen to,
// and only then is anything written, file by file.
#include <algorithm>

#include "model/database.h"
#include "model/datafile.h"
#include "platform/system/messagebox.h"
#include "platform/system/path.h"
#include "platform/system/plainfile.h"
#include "platform/system/signalhold.h"
#include "reporting/report.h"

namespace {

class Save {
public:
    explicit Save(TSXdatabase& saved) : database(saved) {}

    bool run() {
        reserve();
        for (const auto& list : database.lists)
            collect(*list);
        if (database.keeper == nullptr || database.planning || group.empty()) {
            make();
        } else if (database.keeper->before(group)) {
            make();
            database.keeper->after();
        } else {
            complete = false;
        }
        database.addnoted(group);
        tellrest();
        return complete;
    }

private:
    // The changes of one file, from first to before the first of the next.
    struct Part {
        TSXdatafile* file;
        std::size_t first;
    };

    // A million changes are not to be moved again and again.
    void reserve() {
        std::size_t count = 0;
        for (const auto& list : database.lists)
            for (std::size_t i = 1; i < list->files.size(); ++i) {
                const std::vector<std::int32_t>& dirty = list->files[i]->keydirty;
                count += static_cast<std::size_t>(std::count(dirty.begin(), dirty.end(), 1));
            }
        group.reserve(count);
    }

    void collect(TSXfilelist& list) {
        for (std::size_t i = 1; i < list.files.size(); ++i) {
            const std::size_t first = group.size();
            tell(list.files[i]->collectchanges(group));
            if (group.size() > first)
                parts.push_back({list.files[i].get(), first});
        }
    }

    void make() {
        std::vector<Part> made;
        names.renew();
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const std::size_t end = i + 1 < parts.size() ? parts[i + 1].first : group.size();
            if (!made.empty() && !makesfile(parts[i]))
                endmaking(made);
            const bool good = tell(parts[i].file->makechanges(&group[parts[i].first], group.data() + end));
            if (good && makesfile(parts[i]))
                made.push_back(parts[i]);
        }
        endmaking(made);
    }

    bool makesfile(const Part& part) const {
        return group[part.first].kind == Change::making && !database.planning;
    }

    // One look at the names of their directory, and one sync of it, serve all files that were made one behind
    // the other. One beside which a name in other letters has appeared meanwhile is taken away again.
    void endmaking(std::vector<Part>& made) {
        if (made.empty())
            return;
        names.renew();
        std::vector<Part> alone;
        for (const Part& part : made)
            if (standsAlone(part.file->path.view()))
                alone.push_back(part);
            else
                tell(part.file->endmaking(group[part.first], unwritten()));
        const std::string obstacle = syncDirectoryOf(made[0].file->path) ? std::string() : unwritten();
        for (const Part& part : alone)
            tell(part.file->endmaking(group[part.first], obstacle));
        made.clear();
    }

    // A person reads a few messages one by one, and many as one.
    bool tell(const std::string& left) {
        if (left.empty())
            return true;
        complete = false;
        constexpr int few = 3;
        if (++told <= few)
            report(left.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
        else
            rest += (rest.empty() ? "" : "\n") + left;
        return false;
    }

    void tellrest() const {
        if (!rest.empty())
            report(rest.c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
    }

    TSXdatabase& database;
    OneLook names;
    std::vector<Change> group;
    std::vector<Part> parts;
    bool complete = true;
    int told = 0;
    std::string rest;
};

} // namespace

int TSXdatabase::ismodified() const {
    for (const auto& list : lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            if (list->files[i]->anydirty() == 1)
                return 1;
    return 0;
}

int TSXdatabase::saveall() {
    const SignalHold untilsaved;
    return Save(*this).run() ? 1 : 0;
}
