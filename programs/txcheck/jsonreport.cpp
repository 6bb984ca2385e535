#include "jsonreport.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "model/problem.h"

using Json = nlohmann::ordered_json;

namespace {

// The bytes as characters of those numbers, in the UTF-8 that a JSON document is written in.
std::string characters(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80) {
            text.push_back(byte);
        } else {
            text.push_back(static_cast<char>(0xC0 | (value >> 6)));
            text.push_back(static_cast<char>(0x80 | (value & 0x3F)));
        }
    }
    return text;
}

Json problems(const TSXdatabase& database) {
    Json list = Json::array();
    for (int row = 1; row <= database.problemcount; ++row) {
        const TSXproblem& problem = *database.getproblem(row);
        Json solutions = Json::array();
        for (int n = 1; n <= problem.solutioncount(); ++n)
            solutions.push_back(
                {{"command", problem.solutioncommand(n)}, {"label", problem.solutionlabel(n)}});
        list.push_back({{"kind", problem.kind},
                        {"subkind", problem.subkind},
                        {"name", characters(problem.name.view())},
                        {"fileindex", problem.fileindex},
                        {"message", characters(problem.message.view())},
                        {"solutions", solutions}});
    }
    return list;
}

Json types(const TSXdatabase& database) {
    Json list = Json::array();
    for (int i = 0; i <= database.lasttype; ++i) {
        const TSXexptype& type = *database.gettype(i);
        list.push_back({{"index", i},
                        {"class", type.classid},
                        {"name", characters(type.name.view())},
                        {"files", type.filecount},
                        {"entries", type.entrycount}});
    }
    return list;
}

Json key(const TSXdatabase& database, const TSXkeyentry& entry) {
    Json counts = Json::array();
    for (int t = 0; t <= database.lasttype; ++t)
        counts.push_back(entry.occurrences(t));
    return {{"key", characters(entry.key)}, {"counts", counts}};
}

Json record(const Occurrence& occurrence, int type) {
    return {{"type", type},
            {"class", occurrence.file->classid},
            {"file", characters(occurrence.file->name.view())},
            {"record", occurrence.record}};
}

Json entry(TSXdatabase& database, const std::string& wanted) {
    const TSXkeyentry& found = database.keytree.findoradd(wanted);
    Json occurrences = Json::array();
    for (const TSXkeyentry::TypeList& list : found.lists)
        for (const Occurrence& occurrence : list.records)
            occurrences.push_back(record(occurrence, list.type));
    return {{"key", characters(occurrences.empty() ? wanted : found.key)}, {"occurrences", occurrences}};
}

Json solved(const Session& session) {
    Json list = Json::array();
    for (const SolvedStep& step : session.solved)
        list.push_back({{"row", step.row}, {"command", step.command}, {"result", step.result}});
    return list;
}

} // namespace

void writeJson(std::ostream& out, Session& session, const Options& options) {
    TSXdatabase& database = session.database;
    out << "{\"directory\":" << Json(characters(database.directory.view())).dump();
    out << ",\"problems\":" << problems(database).dump();
    out << ",\"types\":" << types(database).dump();
    out << ",\"keytotal\":" << database.keytotal;
    out << ",\"keys\":[";
    for (int i = 1; i <= database.visiblecount; ++i)
        out << (i > 1 ? ",\n" : "\n") << key(database, *database.getvisiblekey(i)).dump();
    out << "]";
    if (options.entry)
        out << ",\"entry\":" << entry(database, *options.entry).dump();
    out << ",\"solved\":" << solved(session).dump();
    out << ",\"modified\":" << database.ismodified() << ",\"saved\":" << (session.saved ? 1 : 0) << "}\n";
}
