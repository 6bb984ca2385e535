#include "pageform.h"

#include <algorithm>
#include <climits>
#include <ctime>
#include <filesystem>
#include <set>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "model/problem.h"
#include "outcome.h"
#include "reporting/printable.h"
#include "shown.h"

namespace {

// The words behind a box hide the rows that bear them; those for the words of the kinds are made with the
// page.
constexpr const char* style = R"(
:root { color-scheme: light dark; --line: #c8c8c8; --soft: #f2f2f2; --bad: #a01818; --good: #116329; }
@media screen and (prefers-color-scheme: dark) {
  :root { --line: #4a4a4a; --soft: #262626; --bad: #ff9a8f; --good: #7ee09a; }
}
body { font: 15px/1.45 sans-serif; margin: 1.5em auto; max-width: 75em; padding: 0 1em; }
main, article { display: flex; flex-direction: column; } .result { order: -1; }
.facts { order: -2; } article > h1, .all { order: -3; }
h1 { font-size: 1.4em; } h2 { font-size: 1.15em; margin: 1.4em 0 .4em; } h1, h2, p { overflow-wrap: anywhere; }
.all .number { text-align: left; } p, ul { margin: .3em 0; } .facts { font-size: .92em; }
article + article { border-top: 3px double var(--line); margin-top: 2em; }
table { border-collapse: collapse; width: 100%; } table.problems, table.known, table.keys { table-layout: fixed; }
th, td { border-bottom: 1px solid var(--line); padding: .3em .6em; text-align: left; vertical-align: top;
  overflow-wrap: anywhere; }
thead th { background: var(--soft); overflow-wrap: normal; } .number { text-align: right; white-space: nowrap; }
tbody th { font-weight: normal; } td ul, th ul { list-style: none; padding: 0; margin: 0; }
th li + li { font-size: .92em; opacity: .85; } ul { padding-left: 1.2em; }
.problems th:first-child, .known th:first-child { width: 2.5em; }
.problems th:nth-child(3), .known th:nth-child(3) { width: 22%; }
.problems th:nth-child(4), .known th:nth-child(4) { width: 25%; }
fieldset { border: 1px solid var(--line); margin: .5em 0; } label { display: inline-block; margin-right: 1.2em; }
.bad { color: var(--bad); } .good { color: var(--good); }
@media (max-width: 40em) {
  .problems thead, .known thead, .keys thead { display: none; }
  :is(.problems, .known, .keys) :is(table, tbody, tr, th, td) { display: block; border: 0; padding: .1em 0; }
  :is(.problems, .known, .keys) tr { border-bottom: 1px solid var(--line); padding: .4em 0; }
  .number { text-align: left; } th, td { padding: .3em; }
}
@media print {
  :root { color-scheme: light; } fieldset { display: none; }
  body { margin: 0; max-width: none; font-size: 10pt; } tr { break-inside: avoid; }
  h2 { break-after: avoid; } main, article { display: block; }
}
)";

constexpr PlainText isPlain("&<>\"'\\");

// Text of this program or of a database: nothing of it ever becomes markup.
std::string text(std::string_view bytes) {
    using Entity = std::pair<char, const char*>;
    constexpr Entity entities[] = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};
    std::string escaped;
    for (const char byte : printable(shown(bytes)))
        if (const auto* entity = std::ranges::find(entities, byte, &Entity::first);
            entity != std::end(entities))
            escaped += entity->second;
        else
            escaped += byte;
    return escaped;
}

// What comes from a database is set off, so that letters of another direction don't move what stands beside
// it. ASCII has none: a page of many keys opens in two thirds of the time without that element in each row.
std::string name(std::string_view bytes) {
    const bool ascii =
        std::ranges::all_of(bytes, [](char byte) { return static_cast<signed char>(byte) >= 0; });
    if (ascii && isPlain(bytes))
        return std::string(bytes);
    return ascii ? text(bytes) : "<bdi>" + text(bytes) + "</bdi>";
}

// One text is no list.
std::string markup(const Field& field) {
    if (field.sort != Field::lines || field.text.find('\n') == std::string::npos)
        return name(field.text);
    std::string items = "<ul>";
    eachLine(field, [&](std::string_view line) { items += "<li>" + name(line) + "</li>"; });
    return items + "</ul>";
}

std::string opened(const char* tag, std::string_view classes) {
    return std::string("<") + tag + (classes.empty() ? "" : " class=\"" + std::string(classes) + "\"") + ">";
}

bool isShown(const Field& field) {
    return *field.title != '\0';
}

std::string linked(const Row& row, const std::string& name) {
    return row.link.empty() ? name : "<a href=\"" + row.link + "\">" + name + "</a>";
}

// The first that is no number names the row.
void writeCells(std::ostream& out, const Row& row) {
    out << opened("tr", row.mark);
    bool named = false;
    for (const Field& field : row.fields()) {
        if (!isShown(field))
            continue;
        if (field.sort == Field::number)
            out << "<td class=\"number\">" << field.text << "</td>";
        else if (std::exchange(named, true))
            out << "<td>" << markup(field) << "</td>";
        else
            out << "<th scope=\"row\">" << linked(row, markup(field)) << "</th>";
    }
    out << "</tr>\n";
}

void writeTitles(std::ostream& out, const Section& section, const Row& row) {
    out << opened("table", section.name) << "<thead><tr>";
    for (const Field& field : row.fields())
        if (isShown(field))
            out << "<th scope=\"col\"" << (field.sort == Field::number ? " class=\"number\">" : ">")
                << field.title << "</th>";
    out << "</tr></thead>\n<tbody>\n";
}

void writeRows(std::ostream& out, const Section& section, Row& row) {
    constexpr const char* moods[] = {"", "good", "bad"};
    if (std::ranges::count_if(row.fields(), isShown) > 1) {
        writeTitles(out, section, row);
        do
            writeCells(out, row);
        while (section.next(row));
        out << "</tbody></table>\n";
        return;
    }
    do
        for (const Field& field : row.fields())
            out << opened("p", moods[static_cast<int>(row.mood)]) << markup(field) << "</p>\n";
    while (section.next(row));
}

// A switch for each kind that there is.
void writeFilter(std::ostream& out, const TSXdatabase& database) {
    std::set<int> there;
    for (int row = 1; row <= database.problemcount; ++row)
        there.insert(database.getproblem(row)->kind);
    if (there.size() < 2)
        return;
    out << "<fieldset><legend>Show</legend>";
    for (const int kind : there) {
        const KindOfProblem& facts = kindofproblem(kind);
        out << "<label><input type=\"checkbox\" checked class=\"" << facts.word << "\"> " << facts.many
            << " (" << facts.word << ")</label>\n";
    }
    out << "</fieldset>\n";
}

void writeSection(std::ostream& out, const Section& section, const std::string& article,
                  const TSXdatabase* database) {
    Row row;
    if (section.title.empty() || !section.next(row))
        return;
    const std::string id = article + section.name;
    out << "<section class=\"" << section.name << "\" aria-labelledby=\"" << id << "\"><h2 id=\"" << id
        << "\">" << text(section.title) << "</h2>\n";
    if (std::string_view(section.name) == "problems")
        writeFilter(out, *database);
    writeRows(out, section, row);
    out << "</section>\n";
}

// When, where and by what the database was looked at.
std::string facts(const TSXdatabase& database) {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    char moment[40] = {};
    if (localtime_r(&now, &parts) != nullptr)
        std::strftime(moment, sizeof moment, "%Y-%m-%d %H:%M:%S %z", &parts);
    char host[HOST_NAME_MAX + 1] = {};
    gethostname(host, sizeof host - 1);
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(database.directory.c_str(), error);
    return "<p class=\"facts\">" + name(whole.lexically_normal().string()) + "<br>" + moment + ", on " +
           name(host) + ", by txcheck " TX_VERSION "</p>\n";
}

std::string rules() {
    std::string text;
    for (const KindOfProblem& kind : kindsofproblem())
        text += std::string("section:has(input.") + kind.word + ":not(:checked)) tr." + kind.word +
                " { display: none; }\n";
    return text;
}

} // namespace

void PageForm::begin() {
    begun = true;
    const std::string title =
        "Database Check- " +
        (directories.size() == 1 ? text(directories[0]) : std::to_string(directories.size()) + " databases");
    file.out() << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
                  "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                  "'unsafe-inline'\">\n<meta name=\"viewport\" content=\"width=device-width\">\n<title>"
               << title << "</title>\n<style>" << style << rules() << "</style></head>\n<body><header><h1>"
               << title << "</h1></header>\n<main>\n";
}

std::string PageForm::add(const Session& session, const Options& options, std::size_t number) {
    if (!begun) {
        if (std::string failure = file.open(path, directories); !failure.empty())
            return failure;
        begin();
    }
    const std::string article = "d" + std::to_string(number) + "-";
    std::ostream& out = file.out();
    out << "<article id=\"" << article << "\">";
    if (directories.size() > 1)
        out << "<h1>" << text(session.label) << "</h1>\n";
    out << facts(session.database);
    for (const Section& section : contentsOf(session, options, Form::page))
        writeSection(out, section, article, &session.database);
    out << "</article>\n";
    return {};
}

std::string PageForm::end(const std::vector<Line>& lines) {
    if (!begun)
        return {};
    if (directories.size() > 1)
        writeSection(file.out(), tableOf(lines), "", nullptr);
    file.out() << "</main></body></html>\n";
    return file.close();
}
