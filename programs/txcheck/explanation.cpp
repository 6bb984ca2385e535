#include "explanation.h"

#include <utility>

#include "concern.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "page.h"
#include "reporting/printable.h"

namespace {

void writeRecords(Page& page, std::span<const Occurrence> records) {
    for (const Occurrence& record : records)
        page.line("        ", printable(record.file->database.diskname(record.file->path.view())) +
                                  ", record " + std::to_string(record.record) + ", type " +
                                  std::to_string(record.type));
}

} // namespace

int rowToExplain(const TSXdatabase& database, const std::string& what) {
    for (int row = 1; row <= database.problemcount; ++row)
        if (what == std::to_string(row) || what == database.getproblem(row)->id())
            return row;
    return 0;
}

void writeExplanation(std::ostream& out, const TSXproblem& problem, int row) {
    Page page(out);
    page.line("", printable(problem.message.view()), Page::Colour::bold);
    page.line("  ", "row " + std::to_string(row) + ", " + printable(problem.id()));
    page.line("  ", problem.facts().meaning);
    page.heading("What it is about");
    forEachFile(problem, [&](const std::string& file) { page.line("    ", printable(file)); });
    const TSXkeyentry* last = nullptr;
    forEachKey(problem, [&](const TSXkeyentry& key, std::span<const Occurrence> records) {
        if (&key != std::exchange(last, &key))
            page.line("    ", key.key.empty() ? "(no key)" : printable(key.key));
        writeRecords(page, records);
    });
    page.heading("Solutions");
    for (int n = 1; n <= problem.solutioncount(); ++n)
        page.line("    " + std::to_string(row) + ':' + std::to_string(n) + "  ",
                  std::string(problem.solutionlabel(n)) + ": it " + problem.solution(n).effect + ". " +
                      problem.solution(n).price);
}
