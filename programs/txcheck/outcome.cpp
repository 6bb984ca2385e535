#include "outcome.h"

#include <climits>
#include <functional>
#include <map>
#include <set>

#include "concern.h"
#include "ending.h"
#include "model/problem.h"
#include "shown.h"
#include "textform.h"

namespace {

// "25 problems left: 9 corrupted files, …"
std::string summary(const Session& session, const char* state) {
    constexpr int unread = INT_MAX; // before all kinds
    std::map<int, int, std::greater<>> counts;
    int total = 0;
    for (int row = 1; row <= session.database.problemcount; ++row)
        if (const TSXproblem& problem = *session.database.getproblem(row);
            !session.known.has(session.database, row)) {
            ++counts[problem.isunread() ? unread : problem.kind];
            ++total;
        }
    std::string text;
    for (const auto& [kind, count] : counts) {
        const KindOfProblem& facts = kindofproblem(kind);
        text +=
            (text.empty() ? ": " : ", ") + (kind == unread ? counted(count, "file", "files") + " not readable"
                                                           : counted(count, facts.one, facts.many));
    }
    return counted(total, "problem", "problems") + state + text + ".";
}

Sentence problemsLeft(const Session& session, bool failed) {
    const bool planned = session.database.planning;
    const char* state = session.steps.solved.empty() ? "" : (planned ? " would be left" : " left");
    if (session.known.unknownIn(session.database) > 0)
        return {summary(session, state), Mood::bad};
    if (failed)
        return {"No problem was found in what could be read."};
    if (session.steps.found)
        return {planned ? "No problem would be left." : "No problem is left.", Mood::good};
    const bool known = session.database.problemcount > 0 || session.database.unreadcount() > 0;
    return {known ? "Nothing is wrong but what is known." : "Nothing is wrong.", Mood::good};
}

// ", 1 file not readable, 3 records not readable": of a file that was read but for some records, these are
// told.
std::string notReadable(const Session& session) {
    std::set<std::string> files;
    int records = 0;
    for (const Unread& thing : session.database.unread)
        if (thing.weight != Unread::told && !session.known.has(thing)) {
            if (thing.record > 0)
                ++records;
            else
                files.insert(thing.name);
        }
    std::string text;
    if (!files.empty())
        text += ", " + counted(static_cast<int>(files.size()), "file", "files") + " not readable";
    if (records > 0)
        text += ", " + counted(records, "record", "records") + " not readable";
    return text;
}

} // namespace

std::vector<Sentence> outcome(const Session& session, const Options& options) {
    const int status = session.status();
    std::vector<Sentence> sentences = {problemsLeft(session, (status & statusFailed) != 0)};
    if ((status & statusFailed) != 0)
        sentences.push_back(
            {"Not everything could be read or done: see the messages, and what could not be read.",
             Mood::bad});
    if ((status & statusEnded) != 0)
        sentences.push_back({"You have ended it: what was not done yet was left out.", Mood::bad});
    if (session.database.planning)
        sentences.push_back({"This is a plan: nothing was written."});
    else if (session.saved)
        sentences.push_back({"All changed keys are on the disk."});
    else if (session.database.ismodified() == 1)
        sentences.push_back({options.save ? "Changed keys are not saved."
                                          : "Changed keys are not saved: give --save to write them to disk.",
                             Mood::bad});
    if (const std::string file = session.undoFile(); !file.empty() && !session.database.changes.empty())
        sentences.push_back({"What was changed is taken back by: txcheck --restore " + shellWord(file)});
    else if (!session.database.changes.empty() && !session.database.planning)
        sentences.push_back({"There is no undo file, so that what was changed can't be taken back."});
    return sentences;
}

std::string inShort(const Session& session) {
    if (!session.loaded)
        return "could not be checked";
    const int problems = session.known.unknownIn(session.database);
    const long changes = static_cast<long>(countlines(session.database.changes));
    std::string text = problems > 0 ? counted(problems, "problem", "problems") : "no problem";
    text += notReadable(session);
    if (changes > 0)
        text += ", " + counted(changes, "change", "changes") + (session.database.planning ? " planned" : "");
    if (const std::string file = session.undoFile(); changes > 0 && !file.empty())
        text += ", taken back by: txcheck --restore " + shellWord(file);
    return text;
}

Section tableOf(const std::vector<Line>& lines) {
    return {"", "all", "All databases", Section::table,
            rowsTo(lines.size(), [&lines](Row& row, std::size_t n) {
                row.number("", "Status", lines[n].status, 6).text("", "Database", lines[n].label, 30);
                row.text("", "Result", lines[n].text);
                if (lines[n].loaded)
                    row.link = "#d" + std::to_string(n + 1) + "-";
            })};
}
