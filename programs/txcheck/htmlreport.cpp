#include "htmlreport.h"

#include <set>
#include <string_view>

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
@media (prefers-color-scheme: dark) {
  :root { --line: #4a4a4a; --soft: #262626; --bad: #ff9a8f; --good: #7ee09a; }
}
body { font: 15px/1.45 sans-serif; margin: 1.5em auto; max-width: 75em; padding: 0 1em; }
h1 { font-size: 1.4em; overflow-wrap: anywhere; } h2 { font-size: 1.15em; margin-top: 1.8em; }
table { border-collapse: collapse; width: 100%; } caption { text-align: left; padding: .3em 0; }
th, td { border-bottom: 1px solid var(--line); padding: .3em .6em; text-align: left; vertical-align: top;
  overflow-wrap: anywhere; }
thead th { background: var(--soft); } td.number { text-align: right; white-space: nowrap; }
.keys { table-layout: fixed; } code { font-size: .92em; white-space: pre-wrap; } ul { padding-left: 1.2em; margin: 0; }
fieldset { border: 1px solid var(--line); margin: 1em 0; } fieldset label { margin-right: 1.2em; }
.bad { color: var(--bad); } .good { color: var(--good); }
@media print {
  fieldset { display: none; } body { margin: 0; max-width: none; font-size: 10pt; } tr { break-inside: avoid; }
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

// What comes from a database, set off so that letters of another direction don't move what stands beside it.
std::string name(std::string_view bytes) {
    return "<bdi>" + text(bytes) + "</bdi>";
}

std::string keyName(std::string_view key) {
    return key.empty() ? "<em>no key</em>" : "<code>" + name(key) + "</code>";
}

std::string cell(std::string_view markup) {
    return "<td>" + std::string(markup) + "</td>";
}

std::string number(long value) {
    return "<td class=\"number\">" + std::to_string(value) + "</td>";
}

std::string head(std::initializer_list<const char*> titles) {
    std::string markup = "<thead><tr>";
    for (const char* title : titles)
        markup += std::string("<th scope=\"col\">") + title + "</th>";
    return markup + "</tr></thead>\n<tbody>\n";
}

std::string section(const std::string& title, const std::string& markup) {
    return markup.empty() ? std::string()
                          : "<section><h2>" + text(title) + "</h2>\n" + markup + "</section>\n";
}

std::string list(const std::string& items) {
    return items.empty() ? std::string() : "<ul>" + items + "</ul>\n";
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
        boxes += "<label><input type=\"checkbox\" checked id=\"" + id + "\"> " + text(kindPlural(kind)) +
                 " (<code>" + kindword(kind) + "</code>)</label>\n";
    }
    if (kinds.size() < 2)
        return {};
    return "<style>" + rules + "</style><fieldset><legend>Show</legend>" + boxes + "</fieldset>\n";
}

std::string solutions(const TSXproblem& problem) {
    constexpr const char* notes[] = {"", " (keys are lost from the data)", " (deletes at once)"};
    std::string items;
    for (int n = 1; n <= problem.solutioncount(); ++n)
        items += item(std::to_string(n) + ": " + text(problem.solutionlabel(n)) +
                      notes[static_cast<int>(problem.solutioncost(n))]);
    return list(items);
}

std::string problems(const Session& session) {
    const TSXdatabase& database = session.database;
    if (database.problemcount == 0)
        return {};
    std::string markup = filter(database) + "<table>" + head({"Row", "Problem", "Id", "Solutions"});
    for (int row = 1; row <= database.problemcount; ++row) {
        const TSXproblem& problem = *database.getproblem(row);
        markup += "<tr class=\"" + kindClass(problem.kind) + "\">" + number(row) +
                  cell(name(problem.message.view()) + (session.known.has(problem) ? " (known)" : "")) +
                  cell("<code>" + name(problem.id()) + "</code>") + cell(solutions(problem)) + "</tr>\n";
    }
    return markup + "</tbody></table>\n";
}

std::string types(const TSXdatabase& database) {
    std::string markup = "<table>" + head({"Type", "Name", "Class", "Files", "Entries"});
    for (int i = 0; i <= database.lasttype; ++i) {
        const TSXexptype& type = *database.gettype(i);
        markup += "<tr>" + number(i) + cell(name(type.name.view())) +
                  cell(fileclasses[type.classid].directory) + number(type.filecount) +
                  number(type.entrycount) + "</tr>\n";
    }
    return markup + "</tbody></table>\n";
}

std::string records(const TSXkeyentry& entry) {
    std::string items;
    for (const Occurrence& record : entry.records())
        items += item(
            "type " + std::to_string(record.type) + ": " +
            name(std::string(fileclasses[record.file->classid].directory) + '/' + record.file->name.c_str()) +
            ", record " + std::to_string(record.record));
    return list(items);
}

std::string keys(const TSXdatabase& database) {
    if (database.visiblecount == 0)
        return {};
    std::string markup = "<table class=\"keys\">" + head({"Key", "Records"});
    for (int i = 1; i <= database.visiblecount; ++i) {
        const TSXkeyentry& entry = *database.getvisiblekey(i);
        markup += "<tr>" + cell(keyName(entry.key)) + cell(records(entry)) + "</tr>\n";
    }
    return markup + "</tbody></table>\n";
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
           "</h1></header>\n<main>" + section("Result", result(session, options)) +
           section("Messages", messages()) + section("Solutions applied", solved(session)) +
           section(database.planning ? "What would be changed on the disk" : "Changed on the disk",
                   changes(database)) +
           section("Problems", problems(session)) +
           section("Keys and their records (" + std::to_string(database.visiblecount) + " of " +
                       std::to_string(database.keytotal) + ")",
                   keys(database)) +
           section("Data types", types(database)) + "</main></body></html>\n";
}
