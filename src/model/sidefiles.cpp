// What the database looks at on disk anew in each analysis: the outer form of the side files, which it
// doesn't interpret, and the directories of the tree.
#include <cstring>
#include <string>
#include <utility>

#include "files/binfile.h"
#include "files/finder.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "platform/system/errors.h"
#include "reporting/log.h"

namespace {

constexpr const char* rawheaders[] = {"TX-COMP-v1.0", "TX-BUNDLE-v01.0", "TX-LIB-v1.0"};

bool israw(const char* header) {
    for (const char* raw : rawheaders)
        if (std::strcmp(raw, header) == 0)
            return true;
    return false;
}

bool hasheader(TSXbinfile& file, const char* header) {
    std::string found;
    if (israw(header)) {
        found.assign(std::strlen(header), ' ');
        file.blockread(found.data(), static_cast<int>(found.size()));
    } else {
        file.readstring(found, headercapacity);
    }
    return found == header;
}

// Walks from chunk frame to chunk frame without reading a body.
bool haschunks(TSXbinfile& file) {
    char tag[tagBufferSize];
    int result = 1;
    while (result != -1 && file.iseof() == 0) {
        result = file.readtag(tag);
        if (result == 0)
            return true;
        if (result == 1)
            result = file.skipchunk();
    }
    return result != -1;
}

// What an opening and the walk over a side file have shown.
struct Look {
    const char* damage = nullptr;          // in the words of the log; none if it is sound
    FileState file;                        // as it stood
    std::uint32_t failure = ERROR_SUCCESS; // of the disk
    bool changed = false;                  // meanwhile, by another program
};

Look lookonce(Tree& tree, const char* path, const char* header) {
    TSXbinfile file;
    if (file.openread(tree, path) != 1)
        return {"could not open", {}, GetLastError()}; // also where it has gone since it was found
    Look look;
    look.file = file.stateatopen();
    if (!hasheader(file, header))
        look.damage = "invalid header";
    else if (!haschunks(file))
        look.damage = "invalid tag";
    const FileState now = file.state();
    look.failure = file.readfailure();
    look.changed = now != FileState() && !now.isUnchanged(look.file);
    file.close();
    return look;
}

// Looks once more at what another program has written meanwhile. What is written all the time can't be read.
Look lookatfile(Tree& tree, const char* path, const char* header) {
    Look look = lookonce(tree, path, header);
    if (look.changed)
        look = lookonce(tree, path, header);
    if (look.changed)
        look.failure = ERROR_FILE_INVALID;
    return look;
}

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
    finder.findclose();
}

void TSXdatabase::lookatsidefile(const TSXfinder& match, const char* path, const char* header) {
    logLine(Text<1300>().format("   found file '%s'", path));
    noteoutside(match);
    const Look look = lookatfile(*tree, path, header);
    if (const std::uint32_t failure = look.failure != 0 ? look.failure : match.entryfailure; failure != 0)
        addunreadpath(path, errorText(failure), Unread::part);
    if (look.damage == nullptr)
        return;
    logLine(Text<60>().format("        ! corrupt: %s", look.damage));
    auto problem = std::make_unique<TSXproblem>(*this, corruptsidefile, 0, path);
    problem->looked = look.file;
    addproblem(std::move(problem));
}

void TSXdatabase::lookatdisk() {
    [[maybe_unused]] const Failure failure = tree->begin(); // what then can't be read says it itself
    for (const auto& list : lists)
        list->takewaiting();
    forgetlooks();
    looking = true;
    scanallsidefiles();
    checkdirectories();
    looking = false;
}

void TSXdatabase::scanallsidefiles() {
    for (const FileClass& experiments : fileclasses)
        if (*experiments.sideheader != '\0')
            scansidefiles(experiments.directory, "CNF", experiments.sideheader);
    scansidefiles(".", "CMP", rawheaders[0]);
    scanlibraries();
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
            scansidefiles(Text<420>().format("Library/%s", finder.entryname.c_str()), "CMP", rawheaders[0]);
        else if (finder.entryfailure != 0)
            addunreadpath(path, errorText(finder.entryfailure), Unread::part);
        else if (!tree->enter(tree->below(path)))
            addunreadpath(
                path,
                "It counts as a file, since nobody may write in it or its name begins with a point: "
                "change that to have it read.",
                Unread::told);
    }
    finder.findclose();
}

void TSXdatabase::checkdirectory(const char* fullpath) {
    Entry entry;
    const std::string name = tree->below(fullpath);
    const Failure failure = tree->enter(name);
    if (!failure)
        return;
    if (!failure.isAbsence())
        addunreadpath(fullpath, failure.text(), Unread::part);
    else if (!tree->look(name, Links::refused, entry) && entry.state.kind != EntryState::missing)
        logLine(("   no directory '" + entry.name + "': A file of that name stands there.").c_str());
    addproblem(std::make_unique<TSXproblem>(*this, missingdirectory, 1, fullpath));
}

void TSXdatabase::checkdirectories() {
    checkdirectory(directory);
    for (const char* name : treedirectories)
        checkdirectory(Text<700>().format("%s\\%s", directory.c_str(), name));
}
