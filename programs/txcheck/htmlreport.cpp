#include "htmlreport.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include "concern.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "outcome.h"
#include "reporting/printable.h"
#include "shown.h"
#include "told.h"

namespace {

constexpr const char* style = R"(
:root { color-scheme: light dark; --line: #c8c8c8; --soft: #f2f2f2; --bad: #a01818; --good: #116329; }
@media screen and (prefers-color-scheme: dark) {
  :root { --line: #4a4a4a; --soft: #262626; --bad: #ff9a8f; --good: #7ee09a; }
}
body { font: 15px/1.45 sans-serif; margin: 1.5em auto; max-width: 75em; padding: 0 1em; }
h1 { font-size: 1.4em; overflow-wrap: anywhere; } h2 { font-size: 1.15em; margin-top: 1.8em; }
table { border-collapse: collapse; width: 100%; }
th, td { border-bottom: 1px solid var(--line); padding: .3em .6em; text-align: left; vertical-align: top;
  overflow-wrap: anywhere; }
thead th { background: var(--soft); overflow-wrap: normal; } td.number { text-align: right; white-space: nowrap; }
tbody th { font-weight: normal; } .keys, .problems { table-layout: fixed; } td ul { list-style: none; padding: 0; }
.problems th:first-child { width: 2.5em; } .problems th:nth-child(n+3) { width: 27%; }
code, .code, .keys tbody th { font-family: monospace; font-size: .92em; white-space: pre-wrap; }
ul { padding-left: 1.2em; margin: 0; }
fieldset { border: 1px solid var(--line); margin: 1em 0; } fieldset label { display: inline-block; margin-right: 1.2em; }
.bad { color: var(--bad); } .good { color: var(--good); }
@media print {
  :root { color-scheme: light; } fieldset { display: none; }
  body { margin: 0; max-width: none; font-size: 10pt; } tr { break-inside: avoid; }
}
)";

// Text of this program or of a database: nothing of it ever becomes markup.
std::string text(std::string_view bytes) {
    std::string escaped;
    for (const char byte : printable(shown(bytes)))
        switch (byte) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += byte;
        }
    return escaped;
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<signed char>(byte) >= 0; });
}

// What comes from a database, set off so that letters of another direction don't move what stands beside it.
// ASCII has none: a page of many keys opens in two thirds of the time without that element in each row.
std::string name(std::string_view bytes) {
    return isAscii(bytes) ? text(bytes) : "<bdi>" + text(bytes) + "</bdi>";
}

constexpr const char* nokey = "<em>no key</em>";

std::string keyName(std::string_view key) {
    return key.empty() ? nokey : "<code>" + name(key) + "</code>";
}

std::string cell(std::string_view markup) {
    return "<td>" + std::string(markup) + "</td>";
}

// What names its row.
std::string rowHead(std::string_view markup) {
    return "<th scope=\"row\">" + std::string(markup) + "</th>";
}

std::string number(long value) {
    return "<td class=\"number\">" + std::to_string(value) + "</td>";
}

// A table that has the name of its section.
std::string table(const std::string& id, std::initializer_list<const char*> titles, const std::string& rows) {
    std::string markup = "<table class=\"" + id + "\" aria-labelledby=\"" + id + "\"><thead><tr>";
    for (const char* title : titles)
        markup += std::string("<th scope=\"col\">") + title + "</th>";
    return markup + "</tr></thead>\n<tbody>\n" + rows + "</tbody></table>\n";
}

std::string section(const std::string& id, const std::string& title, const std::string& markup) {
    return markup.empty() ? std::string()
                          : "<section><h2 id=\"" + id + "\">" + title + "</h2>\n" + markup + "</section>\n";
}

std::string list(const std::string& items) {
    return items.empty() ? std::string() : "<ul>" + items + "</ul>\n";
}

// One thing is no list.
std::string listInCell(const std::vector<std::string>& things) {
    if (things.size() == 1)
        return cell(things[0]);
    std::string items;
    for (const std::string& thing : things)
        items += "<li>" + thing + "</li>";
    return cell(list(items));
}

std::string item(const std::string& markup) {
    return "<li>" + markup + "</li>\n";
}

std::string kindClass(int kind) {
    return "k" + std::to_string(kind);
}

// A switch for each kind that there is, and the rules that hide its rows.
std::string filter(const TSXdatabase& database) {
    std::set<int> kinds;
    for (int row = 1; row <= database.problemcount; ++row)
        kinds.insert(database.getproblem(row)->kind);
    std::string rules;
    std::string boxes;
    for (const int kind : kinds) {
        const std::string id = kindClass(kind);
        rules += "body:has(#" + id + ":not(:checked)) tr." + id + " { display: none; }\n";
        boxes += "<label><input type=\"checkbox\" checked id=\"" + id + "\"> " +
                 text(kindofproblem(kind).many) + " (<code>" + kindofproblem(kind).word +
                 "</code>)</label>\n";
    }
    if (kinds.size() < 2)
        return {};
    return "<style>" + rules + "</style><fieldset><legend>Show</legend>" + boxes + "</fieldset>\n";
}

std::string solutions(const TSXproblem& problem) {
    constexpr const char* notes[] = {"", " (keys are lost from the data)", " (deletes at once)"};
    std::vector<std::string> labels;
    for (int n = 1; n <= problem.solutioncount(); ++n)
        labels.push_back(std::to_string(n) + ": " + text(problem.solutionlabel(n)) +
                         notes[static_cast<int>(problem.solutioncost(n))]);
    return listInCell(labels);
}

std::string problems(const Session& session) {
    const TSXdatabase& database = session.database;
    if (database.problemcount == 0)
        return {};
    std::string rows;
    for (int row = 1; row <= database.problemcount; ++row) {
        const TSXproblem& problem = *database.getproblem(row);
        rows += "<tr class=\"" + kindClass(problem.kind) + "\">" + number(row) +
                rowHead(name(problem.message.view()) + (session.known.has(problem) ? " (known)" : "")) +
                "<td class=\"code\">" + name(problem.id()) + "</td>" + solutions(problem) + "</tr>\n";
    }
    return filter(database) + table("problems", {"Row", "Problem", "Id", "Solutions"}, rows);
}

std::string types(const TSXdatabase& database) {
    std::string rows;
    for (int i = 0; i <= database.lasttype; ++i) {
        const TSXexptype& type = *database.gettype(i);
        rows += "<tr>" + number(i) + rowHead(name(type.name.view())) +
                cell(fileclasses[type.classid].directory) + number(type.filecount) + number(type.entrycount) +
                "</tr>\n";
    }
    return table("types", {"Type", "Name", "Class", "Files", "Entries"}, rows);
}

std::string records(const TSXkeyentry& entry) {
    std::vector<std::string> places;
    for (const Occurrence& record : entry.records())
        places.push_back("type " + std::to_string(record.type) + ": " + name(placeOf(*record.file)) +
                         ", record " + std::to_string(record.record));
    return listInCell(places);
}

std::string entry(const TSXdatabase& database, const std::string& wanted) {
    const TSXkeyentry* found = database.keytree.find(wanted);
    std::string rows;
    if (found != nullptr)
        found->foreachlist([&](std::span<const Occurrence> list) {
            for (std::size_t n = 0; n < list.size(); ++n)
                rows += "<tr>" + number(list[n].type) + number(static_cast<long>(n) + 1) +
                        number(list[n].record) + cell(name(placeOf(*list[n].file))) + "</tr>\n";
        });
    return section("entry", "Entry " + keyName(wanted),
                   rows.empty() ? "<p>No record uses this key.</p>\n"
                                : table("entry", {"Type", "N", "Record", "File"}, rows));
}

std::string keys(const TSXdatabase& database) {
    std::string rows;
    for (int i = 1; i <= database.visiblecount; ++i) {
        const TSXkeyentry& entry = *database.getvisiblekey(i);
        rows += "<tr>" + rowHead(entry.key.empty() ? nokey : name(entry.key)) + records(entry) + "</tr>\n";
    }
    return rows.empty() ? rows : table("keys", {"Key", "Records"}, rows);
}

std::string solved(const Session& session) {
    constexpr const char* results[] = {"failed", "done", "gone before its turn"};
    std::string items;
    for (const SolvedStep& step : session.steps.solved)
        items += item(text(step.label) + ": " + name(step.message) + " (" + results[step.result] + ")");
    return list(items);
}

std::string change(const Change& made) {
    if (made.kind != Change::key)
        return std::string(made.kind == Change::deletion ? "deleted " : "made ") + name(made.file);
    return name(made.file) + ", record " + std::to_string(made.record) + " at " +
           std::to_string(made.offset) + ": " + keyName(made.oldkey) + " → " + keyName(made.newkey);
}

std::string changes(const TSXdatabase& database) {
    std::string items;
    for (const Change& made : database.changes)
        items += item(change(made));
    return list(items);
}

std::string result(const Session& session, const Options& options) {
    constexpr const char* moods[] = {"", "good", "bad"};
    std::string markup;
    for (const Sentence& sentence : outcome(session, options))
        markup += std::string("<p class=\"") + moods[sentence.mood] + "\">" + text(sentence.text) + "</p>\n";
    return markup;
}

std::string messages() {
    std::string items;
    for (const std::string& line : told())
        items += item(name(line));
    return list(items);
}

} // namespace

std::string htmlReport(const Session& session, const Options& options) {
    const TSXdatabase& database = session.database;
    const std::string title = "Database Check- " + text(database.directory.view());
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           "'unsafe-inline'\">\n<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
           title + "</title>\n<style>" + style + "</style></head>\n<body><header><h1>" + title +
           "</h1></header>\n<main>" + section("result", "Result", result(session, options)) +
           section("messages", "Messages", messages()) +
           section("solved", database.planning ? "Solutions that would be applied" : "Solutions applied",
                   solved(session)) +
           section("changed", database.planning ? "What would be changed on the disk" : "Changed on the disk",
                   changes(database)) +
           section("problems", "Problems", problems(session)) +
           (options.entry ? entry(database, *options.entry) : "") +
           section("keys",
                   "Keys and their records (" + std::to_string(database.visiblecount) + " of " +
                       std::to_string(database.keytotal) + ")",
                   keys(database)) +
           section("types", "Data types", types(database)) + "</main></body></html>\n";
}
