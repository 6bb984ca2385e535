#include "explanation.h"

#include "concern.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "page.h"
#include "reporting/printable.h"

namespace {

void writeRecords(Page& page, const KeyConcern& concern) {
    page.line("    ", concern.key->key.empty() ? "(no key)" : printable(concern.key->key));
    for (const Occurrence& record : concern.key->records())
        if (concern.type < 0 || concern.type == record.type)
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
    constexpr const char* costs[] = {"Nothing is lost.", "Keys are lost from the data.",
                                     "The deletion takes effect at once."};
    Page page(out);
    page.line("", printable(problem.message.view()), Page::Colour::bold);
    page.line("  ", "row " + std::to_string(row) + ", " + printable(problem.id()));
    page.line("  ", kindText(problem.kind));
    page.heading("What it is about");
    forEachFile(problem, [&](const std::string& file) { page.line("    ", printable(file)); });
    forEachKey(problem, [&](const KeyConcern& concern) { writeRecords(page, concern); });
    page.heading("Solutions");
    for (int n = 1; n <= problem.solutioncount(); ++n)
        page.line("    " + std::to_string(row) + ':' + std::to_string(n) + "  ",
                  std::string(problem.solutionlabel(n)) + ": it " + solutionText(problem.solutioncommand(n)) +
                      ". " + costs[static_cast<int>(problem.solutioncost(n))]);
}
