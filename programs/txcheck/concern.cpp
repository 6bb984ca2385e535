#include "concern.h"

#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/problem.h"

void forEachKey(const TSXproblem& problem, const KeyVisit& take) {
    const auto concerns = problem.facts().concernskey;
    const TSXdatabase& database = problem.database;
    for (std::int32_t i = 1; concerns != nullptr && i <= database.keytotal; ++i) {
        const TSXkeyentry& entry = *database.keyarray[static_cast<std::size_t>(i)];
        if (entry.shown != 1)
            continue;
        entry.foreachlist([&](std::span<const Occurrence> records) {
            if (concerns(problem, entry, records.front().type))
                take(entry, records);
        });
    }
}

void forEachFile(const TSXproblem& problem, const std::function<void(const std::string&)>& take) {
    const KindOfProblem& kind = problem.facts();
    if (kind.concernskey == nullptr && kind.concernsfile == nullptr)
        take(kind.subject(problem));
    if (kind.concernsfile == nullptr)
        return;
    const TSXdatabase& database = problem.database;
    const auto& files = database.lists[static_cast<std::size_t>(problem.subkind)]->files;
    for (std::size_t i = 1; i < files.size(); ++i)
        if (kind.concernsfile(problem, *files[i], static_cast<int>(i)))
            take(database.diskname(files[i]->path.view()));
}

const char* meaningOf(const TSXproblem& problem) {
    return problem.isunread()
               ? "The file could not be read, so that nobody knows whether it is damaged. Make it "
                 "readable, and check again."
               : problem.facts().meaning;
}

const char* meaningOf(const Unread& thing) {
    constexpr const char* meanings[] = {
        "It was left out, and nothing of the database is missing by that.",
        "Nothing is known of it, so that no repair touches it. All else is judged and can be repaired.",
        "Without it no key can be judged, so that nothing is repaired that changes keys. Make it readable, "
        "or "
        "restore it from a copy, and check again.",
    };
    return meanings[thing.weight];
}

std::string idOf(const Unread& thing) {
    return std::string("unread:") + (thing.record == Unread::type ? "type/" : "") + encodedforid(thing.name) +
           (thing.record > 0 ? '#' + std::to_string(thing.record) : std::string());
}

std::string shortPathOf(const TSXdatafile& file) {
    return std::string(fileclasses[file.classid].directory) + '/' + file.name.c_str();
}
