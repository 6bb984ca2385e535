#include "contents.h"

#include <map>
#include <utility>

#include "concern.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "outcome.h"
#include "textform.h"
#include "told.h"

namespace {

std::string_view shownKey(std::string_view key) {
    return key.empty() ? "(no key)" : key;
}

template <class Fill> std::function<bool(Row&)> oneRow(Fill fill) {
    return rowsTo(1, [fill](Row& row, std::size_t) { fill(row); });
}

// Members of the document itself.
template <class Fill> Section members(Fill fill) {
    return {"", "", "", Section::members, oneRow(fill)};
}

std::string typeName(const TSXdatabase& database, int type) {
    const TSXexptype& found = *database.gettype(type);
    return type == 0 ? "Database"
                     : std::string(fileclasses[found.classid].directory) + '/' + found.name.c_str();
}

void fillSolutions(Row& row, const TSXproblem& problem, int position) {
    constexpr const char* notes[] = {"", "  (keys are lost from the data)", "  (deletes at once)"};
    std::vector<Row> solutions;
    std::string& lines = row.lines("Solutions");
    for (int n = 1; n <= problem.solutioncount(); ++n) {
        const KindOfProblem::Solution& solution = problem.solution(n);
        Row& told = solutions.emplace_back();
        told.number("command", "", solution.command);
        told.text("label", "", solution.label).text("cost", "", costword(solution.cost));
        addLine(lines, std::to_string(position) + ':' + std::to_string(n) + "  " + solution.label +
                           notes[static_cast<int>(solution.cost)]);
    }
    row.rows("solutions") = std::move(solutions);
}

// The first few of the keys or files that a problem is about.
std::string firstConcerned(const TSXproblem& problem) {
    constexpr int most = 10;
    std::string text;
    int count = 0;
    const auto take = [&](std::string_view name) {
        if (++count <= most)
            (text += count > 1 ? ", " : "It is about ") += name;
    };
    const TSXkeyentry* last = nullptr;
    forEachKey(problem, [&](const TSXkeyentry& key, std::span<const Occurrence>) {
        if (&key != std::exchange(last, &key) && !key.key.empty())
            take(key.key);
    });
    if (problem.kind == emptyfiles)
        forEachFile(problem, take);
    return count > most ? text + " and " + std::to_string(count - most) + " more" : text;
}

std::string knownMark(const Known::Standing& standing) {
    if (standing.known == 0)
        return {};
    const std::string known = "  (" + std::to_string(standing.known) + " known";
    return standing.fresh == 0 ? "  (known)" : known + ", " + std::to_string(standing.fresh) + " new)";
}

void fillProblem(Row& row, const Session& session, int position, Form form) {
    const TSXproblem& problem = *session.database.getproblem(position);
    const std::string id = problem.id();
    row.mark = problem.facts().word;
    row.number("row", "Row", position, 5).text("id", "", id).number("kind", "", problem.kind);
    row.number("subkind", "", problem.subkind).text("name", "", problem.name);
    row.number("fileindex", "", problem.fileindex).text("message", "", problem.message);
    if (form != Form::document) {
        std::string& words = row.lines("Problem");
        addLine(words, problem.message + knownMark(session.known.standing(session.database, position)));
        if (form == Form::page || problem.isunread())
            addLine(words, meaningOf(problem));
        if (const std::string about = firstConcerned(problem); !about.empty())
            addLine(words, about);
    }
    row.text("", "Id", id);
    fillSolutions(row, problem, position);
}

Section problems(const Session& session, bool isKnown, Form form) {
    std::vector<int> rows;
    for (int row = 1; row <= session.database.problemcount; ++row)
        if (form == Form::document || session.known.has(session.database, row) == isKnown)
            rows.push_back(row);
    return {form == Form::document ? "problems" : "", isKnown ? "known" : "problems",
            isKnown ? "Known problems, which are accepted as they are"
                    : "Problems, each with its id and its solutions for --solve WHAT:N",
            Section::list, rowsTo(rows.size(), [&session, rows, form](Row& row, std::size_t n) {
                fillProblem(row, session, rows[n], form);
            })};
}

void fillType(Row& row, const TSXdatabase& database, std::size_t n) {
    const int index = static_cast<int>(n);
    const TSXexptype& type = *database.gettype(index);
    row.number("index", "Type", index, 7).number("class", "", type.classid);
    row.text("name", "Name", type.name.view(), 34);
    row.text("", "Class", fileclasses[type.classid].directory, 6);
    row.number("files", "Files", type.filecount, 7).number("entries", "Entries", type.entrycount, 8);
}

std::string wrongWith(const TSXdatabase& database, const TSXkeyentry& entry) {
    std::string text = entry.isorphan() ? "no database entry has it" : "";
    entry.foreachlist([&](std::span<const Occurrence> records) {
        const int type = records.front().type;
        if (records.size() < 2 || (type != 0 && entry.key.empty()))
            return;
        text += (text.empty() ? "" : "; ") + std::to_string(records.size());
        text += entry.key.empty() ? " entries have none" : " times in " + typeName(database, type);
    });
    return text;
}

void fillUses(std::string& numbers, const TSXkeyentry& entry, int lasttype) {
    int type = 0;
    const auto add = [&](std::size_t count) { numbers += (type++ == 0 ? "" : ",") + std::to_string(count); };
    entry.foreachlist([&](std::span<const Occurrence> records) {
        while (type < records.front().type)
            add(0);
        add(records.size());
    });
    while (type <= lasttype)
        add(0);
}

// How many records there are of each type, in a line of a text.
void fillCounts(std::string& counts, const TSXdatabase& database, const TSXkeyentry& entry) {
    entry.foreachlist([&](std::span<const Occurrence> records) {
        counts.append(counts.empty() ? "" : "  ").append(typeName(database, records.front().type));
        counts.append(":").append(std::to_string(records.size()));
    });
}

void fillPlaces(std::string& lines, const TSXdatabase& database, const TSXkeyentry& entry) {
    for (const Occurrence& record : entry.records())
        addLine(lines, typeName(database, record.type) + ": " + shortPathOf(*record.file) + ", record " +
                           std::to_string(record.record));
}

void fillKey(Row& row, const TSXdatabase& database, std::size_t n, Form form) {
    const TSXkeyentry& entry = *database.getvisiblekey(static_cast<int>(n) + 1);
    if (form == Form::document) {
        row.text("key", "", entry.key);
        return fillUses(row.numbers("counts"), entry, database.lasttype);
    }
    row.text("", "Key", shownKey(entry.key), 34);
    const std::string wrong = entry.shown == 1 ? wrongWith(database, entry) : "";
    if (form == Form::text) {
        std::string& records = row.text("Records");
        fillCounts(records, database, entry);
        records += wrong.empty() ? "" : "  (" + wrong + ")";
        return;
    }
    row.text("", "What is wrong", wrong);
    fillPlaces(row.lines("Records"), database, entry);
}

void fillRecord(Row& row, const Occurrence& record, long n) {
    row.number("type", "Type", record.type, 7).number("class", "", record.file->classid);
    row.number("", "N", n, 7).text("file", "", record.file->name.view());
    row.number("record", "Record", record.record, 8);
    row.text("", "Name", typeName(record.file->database, record.type), 24)
        .text("", "File", shortPathOf(*record.file));
}

std::vector<Row> recordsOf(const TSXkeyentry* entry) {
    std::vector<Row> rows;
    if (entry != nullptr)
        entry->foreachlist([&](std::span<const Occurrence> records) {
            long n = 0;
            for (const Occurrence& record : records)
                fillRecord(rows.emplace_back(), record, ++n);
        });
    return rows;
}

// For programs one object, for a person a table.
void addEntry(std::vector<Section>& sections, const TSXdatabase& database, const std::string& wanted) {
    const TSXkeyentry* entry = database.keytree.find(wanted);
    const std::vector<Row> rows = recordsOf(entry);
    const std::string key(rows.empty() ? wanted : entry->key);
    sections.push_back({"entry", "", "", Section::object, oneRow([key, rows](Row& row) {
                            row.text("key", "", key).rows("occurrences") = rows;
                        })});
    sections.push_back({"", "entry",
                        "Entry " + std::string(shownKey(key)) + ", used by " +
                            counted(static_cast<long>(rows.size()), "record", "records"),
                        Section::table,
                        rowsTo(rows.size(), [rows](Row& row, std::size_t n) { row = rows[n]; })});
}

void fillSolved(Row& row, const SolvedStep& step, bool planned) {
    constexpr const char* done[] = {"failed", "done", "gone"};
    constexpr const char* would[] = {"would fail", "would be done", "gone"};
    row.text("", "Result", (planned ? would : done)[step.result], planned ? 13 : 6);
    row.text("", "Solution", step.label + ": " + step.message);
    row.number("row", "", step.row).text("id", "", step.id);
    row.number("command", "", step.command).number("result", "", step.result);
}

void fillChange(Row& row, const ChangeLine& change) {
    constexpr const char* words[] = {"", "key", "deleted", "made"};
    const bool key = change.kind == Change::keys;
    row.text("", "Change", words[change.kind], 7);
    row.text(key ? "file" : words[change.kind], "", change.file);
    if (key) {
        row.number("record", "", change.record).number("offset", "", change.offset);
        row.text("old", "", change.oldkey).text("new", "", change.newkey);
    }
    row.text("", "What",
             !key ? change.file
                  : change.file + ", record " + std::to_string(change.record) + " at " +
                        std::to_string(change.offset) + ": " + std::string(shownKey(change.oldkey)) + " -> " +
                        std::string(shownKey(change.newkey)));
}

void fillUnread(Row& row, const Unread& thing, const Known& known) {
    const bool told = thing.weight == Unread::told;
    const std::string id = idOf(thing);
    row.text("id", "", id).text("name", "", thing.name).text("reason", "", thing.reason);
    std::string& words = row.lines("What");
    addLine(words, (told               ? "Passed over: "
                    : known.has(thing) ? "Known: "
                                       : "") +
                       thing.name + ": " + thing.reason);
    row.text("", "Id", id);
}

std::function<bool(Row&)> linesOf(const std::vector<Change>& changes) {
    return [lines = ChangeLines(changes), line = ChangeLine()](Row& row) mutable {
        const bool more = lines.next(line);
        row.clear();
        if (more)
            fillChange(row, line);
        return more;
    };
}

std::function<bool(Row&)> sentences(const Session& session, const Options& options) {
    const std::vector<Sentence> told = outcome(session, options);
    return rowsTo(told.size(), [told](Row& row, std::size_t n) {
        row.text("", "Result", told[n].text);
        row.mood = told[n].mood;
    });
}

void addDone(std::vector<Section>& sections, const Session& session) {
    const bool planned = session.database.planning;
    sections.push_back(
        {"solved", "solved", planned ? "Solutions that would be applied" : "Solutions applied", Section::list,
         eachOf(session.steps.solved,
                [planned](Row& row, const SolvedStep& step) { fillSolved(row, step, planned); })});
    sections.push_back(members([&session](Row& row) {
        row.number("modified", "", session.database.ismodified());
        row.number("saved", "", session.saved ? 1 : 0);
    }));
    sections.push_back({"changes", "changes",
                        planned ? "What would be changed on the disk" : "Changed on the disk", Section::list,
                        linesOf(session.database.changes)});
}

Section directoryOf(const TSXdatabase& database) {
    return members([&database](Row& row) { row.text("directory", "", database.directory.view()); });
}

// What stands at the end of each report.
void addEnd(std::vector<Section>& sections, const Session& session) {
    sections.push_back(
        {"", "messages", "Messages", Section::list,
         eachOf(told(), [](Row& row, const std::string& text) { row.text("", "Message", text); })});
    sections.push_back(members([&session](Row& row) { row.number("status", "", session.status()); }));
}

void addFound(std::vector<Section>& sections, const Session& session, const Options& options, Form form) {
    const TSXdatabase& database = session.database;
    sections.push_back(problems(session, false, form));
    if (form != Form::document)
        sections.push_back(problems(session, true, form));
    sections.push_back(
        {"types", "types", "Data types", Section::table,
         rowsTo(database.types.size(), [&](Row& row, std::size_t n) { fillType(row, database, n); })});
    sections.push_back(members([&](Row& row) { row.number("keytotal", "", database.keytotal); }));
    sections.push_back(
        {"keys", "keys",
         std::string(options.all ? "Keys" : "Keys with something wrong") + " (" +
             std::to_string(database.visiblecount) + " of " + std::to_string(database.keytotal) + ")",
         Section::list,
         rowsTo(static_cast<std::size_t>(database.visiblecount),
                [&database, form](Row& row, std::size_t n) { fillKey(row, database, n, form); })});
}

} // namespace

std::vector<Section> contentsOf(const Session& session, const Options& options, Form form) {
    const TSXdatabase& database = session.database;
    std::vector<Section> sections = {directoryOf(database)};
    addFound(sections, session, options, form);
    if (options.entry)
        addEntry(sections, database, *options.entry);
    addDone(sections, session);
    sections.push_back({"unread", "unread", "What could not be read, or was passed over", Section::list,
                        eachOf(database.unread, [&session](Row& row, const Unread& thing) {
                            fillUnread(row, thing, session.known);
                        })});
    addEnd(sections, session);
    sections.push_back({"", "result", "Result", Section::list, sentences(session, options)});
    return sections;
}

namespace {

struct Use {
    const TSXkeyentry* key;
    Occurrence record;
};

// Each record that a problem is about; the name of a file is looked up once.
std::function<bool(Row&)> usesOf(const TSXproblem& problem) {
    std::vector<Use> uses;
    forEachKey(problem, [&](const TSXkeyentry& key, std::span<const Occurrence> records) {
        for (const Occurrence& record : records)
            uses.push_back({&key, record});
    });
    const std::size_t count = uses.size();
    return rowsTo(count, [uses = std::move(uses), names = std::map<const TSXdatafile*, std::string>()](
                             Row& row, std::size_t n) mutable {
        const Use& use = uses[n];
        std::string& file = names[use.record.file];
        if (file.empty())
            file = use.record.file->database.diskname(use.record.file->path.view());
        row.text("key", "", use.key->key).text("", "Key", shownKey(use.key->key), 34);
        row.number("type", "", use.record.type);
        row.text("file", "", file).number("record", "", use.record.record);
        row.text("", "Record",
                 file + ", record " + std::to_string(use.record.record) + ", " +
                     typeName(use.record.file->database, use.record.type));
    });
}

std::function<bool(Row&)> filesOf(const TSXproblem& problem) {
    std::vector<std::string> files;
    forEachFile(problem, [&](const std::string& file) { files.push_back(file); });
    return rowsTo(files.size(), [files](Row& row, std::size_t n) { row.text("name", "File", files[n]); });
}

std::function<bool(Row&)> effectsOf(const TSXproblem& problem) {
    return rowsTo(static_cast<std::size_t>(problem.solutioncount()), [&problem](Row& row, std::size_t n) {
        const KindOfProblem::Solution& solution = problem.solution(static_cast<int>(n) + 1);
        row.number("command", "", solution.command).number("", "N", static_cast<long>(n) + 1, 5);
        row.text("effect", "", solution.effect).text("price", "", solution.price);
        row.text("", "What it does",
                 std::string(solution.label) + ": it " + solution.effect + ". " + solution.price);
    });
}

} // namespace

std::vector<Section> explanationOf(const Session& session) {
    const TSXdatabase& database = session.database;
    std::vector<Section> sections = {directoryOf(database)};
    if (const TSXproblem* problem = database.getproblem(session.explained)) {
        sections.push_back({"problem", "problem", "Problem", Section::object, oneRow([&session](Row& row) {
                                fillProblem(row, session, session.explained, Form::page);
                            })});
        sections.push_back({"files", "files", "Files", Section::list, filesOf(*problem)});
        sections.push_back({"keys", "keys", "Keys and their records", Section::list, usesOf(*problem)});
        sections.push_back({"effects", "effects", "Solutions", Section::list, effectsOf(*problem)});
    } else if (session.explainedUnread != nullptr) {
        sections.push_back(
            {"unread", "unread", "Could not be read", Section::object, oneRow([&session](Row& row) {
                 fillUnread(row, *session.explainedUnread, session.known);
                 row.text("meaning", "Meaning", meaningOf(*session.explainedUnread));
             })});
    }
    addEnd(sections, session);
    return sections;
}
