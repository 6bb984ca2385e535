#include "textreport.h"

#include <iomanip>
#include <string_view>

#include "model/datafile.h"
#include "model/exptype.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "reporting/printable.h"
#include "status.h"

namespace {

constexpr std::size_t width = 80;
constexpr std::size_t keyWidth = 40;

// A line that goes on with an indent where it would pass the width; it breaks at blanks, or in a long path
// anywhere.
void writeWrapped(std::ostream& out, std::string_view first, std::string_view text) {
    const std::string indent(first.size(), ' ');
    const std::size_t room = width - first.size();
    out << first;
    while (columns(text) > room) {
        std::size_t cut = bytesOf(text, room);
        const std::size_t blank = text.rfind(' ', cut);
        if (blank != std::string_view::npos && blank > 0)
            cut = blank;
        out << text.substr(0, cut) << '\n' << indent;
        text.remove_prefix(cut);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    out << text << '\n';
}

std::string padded(std::string text, std::size_t columnCount) {
    const std::size_t used = columns(text);
    if (used < columnCount)
        text.append(columnCount - used, ' ');
    return text;
}

std::string counted(long count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

void writeSolved(std::ostream& out, const Session& session) {
    if (session.steps.solved.empty())
        return;
    constexpr const char* results[] = {"  failed  ", "  done    ", "  gone    "};
    out << "\nSolutions applied\n";
    for (const SolvedStep& step : session.steps.solved)
        writeWrapped(out, results[step.result], step.label + ": " + printable(step.message));
}

constexpr const char* costNotes[] = {"", "  (keys are lost from the data)", "  (deletes at once)"};

void writeProblems(std::ostream& out, const TSXdatabase& database) {
    out << "\nProblems" << (database.problemcount > 0 ? ", each with its solutions for --solve WHAT:N" : "")
        << '\n';
    if (database.problemcount == 0)
        out << "  none\n";
    for (int row = 1; row <= database.problemcount; ++row) {
        const TSXproblem& problem = *database.getproblem(row);
        const std::string number = std::to_string(row);
        const std::string indent(number.size() < 5 ? 5 - number.size() : 0, ' ');
        writeWrapped(out, indent + number + "  ", printable(problem.message.view()));
        writeWrapped(out, "         ", problem.id());
        for (int n = 1; n <= problem.solutioncount(); ++n)
            out << "         " << row << ':' << n << "  " << problem.solutionlabel(n)
                << costNotes[static_cast<int>(problem.solutioncost(n))] << '\n';
    }
}

void writeTypes(std::ostream& out, const TSXdatabase& database) {
    out << "\nData types\n   Type  " << padded("Name", keyWidth) << "  Class     Files   Entries\n";
    for (int i = 0; i <= database.lasttype; ++i) {
        const TSXexptype& type = *database.gettype(i);
        out << std::setw(7) << i << "  " << padded(shortened(printable(type.name.view()), keyWidth), keyWidth)
            << "  " << padded(fileclasses[type.classid].directory, 6) << std::setw(9) << type.filecount
            << std::setw(10) << type.entrycount << '\n';
    }
}

std::string shownKey(std::string_view key) {
    return key.empty() ? "(no key)" : printable(key);
}

void writeKeys(std::ostream& out, const TSXdatabase& database, bool all) {
    out << '\n'
        << (all ? "Keys" : "Keys with something wrong") << " (" << database.visiblecount << " of "
        << database.keytotal << ")\n";
    if (database.visiblecount == 0)
        return;
    out << "  " << padded("Key", keyWidth) << "  Type:records\n";
    for (int i = 1; i <= database.visiblecount; ++i) {
        const TSXkeyentry& entry = *database.getvisiblekey(i);
        std::string uses;
        for (const TSXkeyentry::TypeList& list : entry.lists)
            if (!list.records.empty())
                uses += (uses.empty() ? "" : " ") + std::to_string(list.type) + ':' +
                        std::to_string(list.records.size());
        std::string key = "  " + padded(shownKey(entry.key), keyWidth);
        if (columns(key) > keyWidth + 2) {
            out << key << '\n';
            key.assign(keyWidth + 2, ' ');
        }
        writeWrapped(out, key + "  ", uses);
    }
}

void writeEntry(std::ostream& out, const TSXdatabase& database, const std::string& wanted) {
    const TSXkeyentry* entry = database.keytree.find(wanted);
    long total = 0;
    if (entry != nullptr)
        for (const TSXkeyentry::TypeList& list : entry->lists)
            total += static_cast<long>(list.records.size());
    out << "\nEntry " << shownKey(total > 0 ? entry->key : wanted) << ", used by "
        << counted(total, "record", "records") << '\n';
    if (total == 0)
        return;
    out << "   Type      N  Record  File\n";
    for (const TSXkeyentry::TypeList& list : entry->lists)
        for (std::size_t n = 0; n < list.records.size(); ++n) {
            const TSXdatafile& file = *list.records[n].file;
            out << std::setw(7) << list.type << std::setw(7) << n + 1 << std::setw(8)
                << list.records[n].record << "  " << fileclasses[file.classid].directory << '/'
                << printable(file.name.view()) << '\n';
        }
}

void writeConclusion(std::ostream& out, const Session& session, const Options& options) {
    const TSXdatabase& database = session.database;
    const bool failed = session.status() == statusFailed;
    out << '\n';
    if (failed)
        out << "Not everything could be done: see the messages on standard error.\n";
    if (database.problemcount > 0)
        out << counted(database.problemcount, "problem is", "problems are") << " left.\n";
    else if (session.steps.found)
        out << "No problem is left.\n";
    else if (!failed)
        out << "Nothing is wrong.\n";
    if (session.saved)
        out << "All changed keys are on the disk.\n";
    else if (database.ismodified() == 1)
        out << (options.save ? "Changed keys are not saved.\n"
                             : "Changed keys are not saved: give --save to write them to disk.\n");
}

} // namespace

void writeText(std::ostream& out, const Session& session, const Options& options) {
    const TSXdatabase& database = session.database;
    writeWrapped(out, "Database Check- ", printable(database.directory.view()));
    writeSolved(out, session);
    writeProblems(out, database);
    writeTypes(out, database);
    writeKeys(out, database, options.all);
    if (options.entry)
        writeEntry(out, database, *options.entry);
    writeConclusion(out, session, options);
}
