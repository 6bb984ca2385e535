#include "jsonreport.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "concern.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/utf8.h"
#include "shown.h"

using Json = nlohmann::ordered_json;

namespace {

void put(Json& object, const std::string& name, std::string_view bytes) {
    object[name] = shown(bytes);
    if (!isUtf8(bytes))
        object[name + "_hex"] = hex(bytes);
}

Json solutions(const TSXproblem& problem) {
    Json list = Json::array();
    for (int n = 1; n <= problem.solutioncount(); ++n)
        list.push_back({{"command", problem.solutioncommand(n)},
                        {"label", problem.solutionlabel(n)},
                        {"cost", costword(problem.solutioncost(n))}});
    return list;
}

Json problem(const TSXproblem& found, int row) {
    Json object = {{"row", row}, {"id", found.id()}, {"kind", found.kind}, {"subkind", found.subkind}};
    put(object, "name", found.name.view());
    object["fileindex"] = found.fileindex;
    put(object, "message", found.message.view());
    object["solutions"] = solutions(found);
    return object;
}

Json type(const TSXexptype& found, int index) {
    Json object = {{"index", index}, {"class", found.classid}};
    put(object, "name", found.name.view());
    object["files"] = found.filecount;
    object["entries"] = found.entrycount;
    return object;
}

Json key(const TSXkeyentry& entry, int lasttype) {
    Json object;
    put(object, "key", entry.key);
    Json& counts = object["counts"] = Json::array();
    for (int t = 0; t <= lasttype; ++t)
        counts.push_back(entry.occurrences(t));
    return object;
}

Json record(const Occurrence& occurrence) {
    Json object = {{"type", occurrence.type}, {"class", occurrence.file->classid}};
    put(object, "file", occurrence.file->name.view());
    object["record"] = occurrence.record;
    return object;
}

Json entry(const TSXdatabase& database, const std::string& wanted) {
    const TSXkeyentry* found = database.keytree.find(wanted);
    Json occurrences = Json::array();
    if (found != nullptr)
        for (const Occurrence& occurrence : found->records())
            occurrences.push_back(record(occurrence));
    Json object;
    put(object, "key", occurrences.empty() ? wanted : found->key);
    object["occurrences"] = occurrences;
    return object;
}

Json solved(const SolvedStep& step) {
    return {{"row", step.row}, {"id", step.id}, {"command", step.command}, {"result", step.result}};
}

Json change(const Change& made) {
    Json object;
    if (made.kind == Change::key) {
        put(object, "file", made.file);
        object["record"] = made.record;
        object["offset"] = made.offset;
        put(object, "old", made.oldkey);
        put(object, "new", made.newkey);
    } else {
        put(object, made.kind == Change::deletion ? "deleted" : "made", made.file);
    }
    return object;
}

Json unread(const Unread& thing) {
    Json object = {{"id", idOf(thing)}};
    put(object, "name", thing.name);
    put(object, "reason", thing.reason); // it may name a file
    return object;
}

// Items from 1 to count, each in a line of its own: a document of a large database can be read in an editor,
// and is never held whole.
template <class Item> void writeList(std::ostream& out, const char* name, int count, Item item) {
    out << ",\n\"" << name << "\":[";
    for (int i = 1; i <= count; ++i)
        out << (i > 1 ? ",\n" : "\n") << escaped(item(i).dump());
    out << ']';
}

template <class Items> int countOf(const Items& items) {
    return static_cast<int>(items.size());
}

} // namespace

void writeJson(std::ostream& out, const Session& session, const Options& options) {
    const TSXdatabase& database = session.database;
    Json head;
    put(head, "directory", database.directory.view());
    std::string opening = escaped(head.dump());
    opening.pop_back();
    out << opening;
    writeList(out, "problems", database.problemcount,
              [&](int row) { return problem(*database.getproblem(row), row); });
    writeList(out, "types", database.lasttype + 1,
              [&](int n) { return type(*database.gettype(n - 1), n - 1); });
    out << ",\n\"keytotal\":" << database.keytotal;
    writeList(out, "keys", database.visiblecount,
              [&](int i) { return key(*database.getvisiblekey(i), database.lasttype); });
    if (options.entry)
        out << ",\n\"entry\":" << escaped(entry(database, *options.entry).dump());
    const auto at = [](const auto& items, int n) -> const auto& {
        return items[static_cast<std::size_t>(n) - 1];
    };
    const auto& steps = session.steps.solved;
    writeList(out, "solved", countOf(steps), [&](int n) { return solved(at(steps, n)); });
    out << ",\n\"modified\":" << database.ismodified() << ",\"saved\":" << (session.saved ? 1 : 0);
    writeList(out, "changes", countOf(database.changes),
              [&](int n) { return change(at(database.changes, n)); });
    writeList(out, "unread", countOf(database.unread), [&](int n) { return unread(at(database.unread, n)); });
    out << ",\n\"status\":" << session.status() << "}\n";
}
