// What the database looks at on disk anew in each analysis: the outer form of the side files, which it
// doesn't interpret, and the directories of the tree.
#include <string>
#include <utility>

#include "files/finder.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "model/wholereading.h"
#include "platform/system/errors.h"
#include "reporting/log.h"

namespace {

constexpr const char* compheader = "TX-COMP-v1.0";

// In the words of the log, by the outcome of a reading; none where the file is sound.
constexpr const char* damages[] = {"could not open", "invalid header", "invalid tag", nullptr, nullptr};

} // namespace

void TSXdatabase::scansidefiles(const char* relative, const char* extension, const char* header) {
    Text<1200> pattern;
    pattern.format("%s/%s/*.%s", directory.c_str(), relative, extension);
    logLine(Text<1300>().format("*** Scanning corrupt files at %s ***", pattern.c_str()));
    TSXfinder finder(*tree);
    int match = finder.findfirst(pattern);
    notesearch(finder, relative, Unread::part);
    for (; match != 0; match = finder.findnext())
        if (finder.entrykind == TSXfinder::file)
            lookatsidefile(
                finder,
                Text<1200>().format("%s/%s/%s", directory.c_str(), relative, finder.entryname.c_str()),
                header);
}

void TSXdatabase::lookatsidefile(const TSXfinder& match, const char* path, const char* header) {
    logLine(Text<1300>().format("   found file '%s'", path));
    noteoutside(match);
    const WholeReading reading =
        readwhole({*tree, path, header}, [](TSXbinfile&, const char*) { return Chunk::toleave; });
    if (const std::uint32_t failure = reading.failure != 0 ? reading.failure : match.entryfailure;
        failure != 0)
        addunreadpath(path, errorText(failure), Unread::part);
    const char* const damage = damages[reading.outcome];
    if (damage == nullptr)
        return;
    logLine(Text<60>().format("        ! corrupt: %s", damage));
    auto problem = std::make_unique<TSXproblem>(*this, corruptsidefile, 0, path);
    problem->looked = reading.file;
    addproblem(std::move(problem));
}

void TSXdatabase::lookatdisk() {
    [[maybe_unused]] const Failure failure = tree->begin(); // what then can't be read says it itself
    for (const auto& list : lists)
        list->takewaiting();
    forgetlooks();
    looking = true;
    for (const FileClass& experiments : fileclasses)
        if (*experiments.sideheader != '\0')
            scansidefiles(experiments.directory, "CNF", experiments.sideheader);
    scansidefiles(".", "CMP", compheader);
    scanlibraries();
    checkdirectory(directory);
    for (const char* name : treedirectories)
        checkdirectory(Text<700>().format("%s\\%s", directory.c_str(), name));
    looking = false;
}

void TSXdatabase::scanlibraries() {
    Text<700> pattern;
    pattern.format("%s/Library/*.LIB", directory.c_str());
    logLine(Text<800>().format("*** Scanning library directories at %s ***", pattern.c_str()));
    notetwins("Library", Unread::part);
    TSXfinder finder(*tree);
    int match = finder.findfirst(pattern);
    notesearch(finder, "Library", Unread::part);
    for (; match != 0; match = finder.findnext()) {
        const std::string path = std::string(directory) + "/Library/" + finder.entryname.c_str();
        if (finder.entrykind == TSXfinder::directory)
            scansidefiles(Text<420>().format("Library/%s", finder.entryname.c_str()), "CMP", compheader);
        else if (finder.entryfailure != 0)
            addunreadpath(path, errorText(finder.entryfailure), Unread::part);
        else if (!tree->enter(tree->below(path)))
            addunreadpath(
                path,
                "It counts as a file, since nobody may write in it or its name begins with a point: "
                "change that to have it read.",
                Unread::told);
    }
}

void TSXdatabase::checkdirectory(const char* fullpath) {
    Entry entry;
    const std::string name = tree->below(fullpath);
    const Failure failure = tree->enter(name);
    if (!failure)
        return;
    if (!failure.isAbsence())
        addunreadpath(fullpath, failure.text(), Unread::part);
    else if (!tree->look(name, Links::unfollowed, entry) && entry.state.kind != FileState::missing)
        logLine(("   no directory '" + entry.name + "': A file of that name stands there.").c_str());
    addproblem(std::make_unique<TSXproblem>(*this, missingdirectory, 1, fullpath));
}
