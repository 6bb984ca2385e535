#include "textreport.h"

#include <string_view>

#include "concern.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "outcome.h"
#include "page.h"
#include "reporting/printable.h"
#include "told.h"

namespace {

using Colour = Page::Colour;

std::string rightAligned(long number, std::size_t columnCount) {
    std::string text = std::to_string(number);
    return text.insert(0, columnCount > text.size() ? columnCount - text.size() : 0, ' ');
}

std::string shownKey(std::string_view key) {
    return key.empty() ? "(no key)" : printable(key);
}

void writeSolved(Page& page, const Session& session) {
    if (session.steps.solved.empty())
        return;
    constexpr const char* results[] = {"  failed  ", "  done    ", "  gone    "};
    page.heading(session.database.planning ? "Solutions that would be applied" : "Solutions applied");
    for (const SolvedStep& step : session.steps.solved)
        page.line(results[step.result], step.label + ": " + printable(step.message));
}

std::string shownChange(const Change& change) {
    std::string file = printable(change.file);
    if (change.kind != Change::key)
        return file;
    return file + ", record " + std::to_string(change.record) + " at " + std::to_string(change.offset) +
           ": " + shownKey(change.oldkey) + " -> " + shownKey(change.newkey);
}

void writeProblem(Page& page, const TSXproblem& problem, int row) {
    constexpr const char* notes[] = {"", "  (keys are lost from the data)", "  (deletes at once)"};
    constexpr const char* indent = "         ";
    page.line(rightAligned(row, 5) + "  ", printable(problem.message.view()));
    page.line(indent, printable(problem.id()));
    for (int n = 1; n <= problem.solutioncount(); ++n)
        page.line(indent, std::to_string(row) + ':' + std::to_string(n) + "  " + problem.solutionlabel(n) +
                              notes[static_cast<int>(problem.solutioncost(n))]);
}

void writeProblems(Page& page, const Session& session, bool accepted) {
    const TSXdatabase& database = session.database;
    const int unknown = session.known.unknownIn(database);
    const int count = accepted ? database.problemcount - unknown : unknown;
    if (accepted && count == 0)
        return;
    page.heading(accepted    ? "Known problems, which are accepted as they are"
                 : count > 0 ? "Problems, each with its id and its solutions for --solve WHAT:N"
                             : "Problems");
    if (count == 0)
        page.line("  ", "none");
    for (int row = 1; row <= database.problemcount; ++row)
        if (session.known.has(*database.getproblem(row)) == accepted)
            writeProblem(page, *database.getproblem(row), row);
}

void writeTypes(Page& page, const TSXdatabase& database) {
    const std::size_t nameWidth = page.width / 2;
    page.heading("Data types");
    page.line("   Type  ", padded("Name", nameWidth) + "  Class     Files   Entries");
    for (int i = 0; i <= database.lasttype; ++i) {
        const TSXexptype& type = *database.gettype(i);
        page.line(rightAligned(i, 7) + "  " +
                      padded(shortened(printable(type.name.view()), nameWidth), nameWidth),
                  "  " + padded(fileclasses[type.classid].directory, 6) + rightAligned(type.filecount, 9) +
                      rightAligned(type.entrycount, 10));
    }
}

void writeKeys(Page& page, const TSXdatabase& database, bool all) {
    page.heading(std::string(all ? "Keys" : "Keys with something wrong") + " (" +
                 std::to_string(database.visiblecount) + " of " + std::to_string(database.keytotal) + ")");
    if (database.visiblecount == 0)
        return;
    const std::size_t keyWidth = page.width / 2 + 4;
    page.line(keyWidth, "  Key", "Type:records");
    for (int i = 1; i <= database.visiblecount; ++i) {
        const TSXkeyentry& entry = *database.getvisiblekey(i);
        std::string uses;
        entry.foreachlist([&](std::span<const Occurrence> list) {
            uses += (uses.empty() ? "" : " ") + std::to_string(list.front().type) + ':' +
                    std::to_string(list.size());
        });
        page.line(keyWidth, "  " + shownKey(entry.key), uses);
    }
}

void writeEntry(Page& page, const TSXdatabase& database, const std::string& wanted) {
    const TSXkeyentry* entry = database.keytree.find(wanted);
    const long total = entry != nullptr ? static_cast<long>(entry->records().size()) : 0;
    page.heading("Entry " + shownKey(total > 0 ? entry->key : wanted) + ", used by " +
                 counted(total, "record", "records"));
    if (total == 0)
        return;
    page.line("", "   Type      N  Record  File");
    entry->foreachlist([&](std::span<const Occurrence> list) {
        for (std::size_t n = 0; n < list.size(); ++n) {
            page.line(rightAligned(list[n].type, 7) + rightAligned(static_cast<long>(n) + 1, 7) +
                          rightAligned(list[n].record, 8) + "  ",
                      printable(placeOf(*list[n].file)));
        }
    });
}

void writeTold(Page& page) {
    if (told().empty())
        return;
    page.heading("Messages");
    for (const std::string& text : told())
        page.line("  ", text, Colour::yellow);
}

void writeConclusion(Page& page, const Session& session, const Options& options) {
    constexpr Colour colours[] = {Colour::none, Colour::green, Colour::red};
    page.heading("Result");
    for (const Sentence& sentence : outcome(session, options))
        page.line("  ", sentence.text, colours[sentence.mood]);
}

} // namespace

void writeChanges(Page& page, const std::vector<Change>& changes, const char* heading) {
    constexpr const char* kinds[] = {"  key      ", "  deleted  ", "  made     "};
    if (!changes.empty())
        page.heading(heading);
    for (const Change& change : changes)
        page.line(kinds[change.kind], shownChange(change));
}

void writeText(std::ostream& out, const Session& session, const Options& options) {
    const TSXdatabase& database = session.database;
    Page page(out);
    page.line("Database Check- ", printable(database.directory.view()), Colour::bold);
    writeSolved(page, session);
    writeChanges(page, database.changes,
                 database.planning ? "What would be changed on the disk" : "Changed on the disk");
    writeProblems(page, session, false);
    writeProblems(page, session, true);
    writeTypes(page, database);
    writeKeys(page, database, options.all);
    if (options.entry)
        writeEntry(page, database, *options.entry);
    writeTold(page);
    writeConclusion(page, session, options);
}
