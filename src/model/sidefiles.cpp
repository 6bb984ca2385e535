// What the database looks at on disk anew in each analysis: the outer form of the side files, which it
// doesn't interpret, and the directories of the tree.
#include <cstring>
#include <string>

#include "files/binfile.h"
#include "files/finder.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/path.h"
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

// What is wrong with a side file, in the words of the log; none if it is sound. state gets the file as it
// stands, failure the error number of the disk, 0 if it did not fail.
const char* finddamage(const char* path, const char* header, FileState& state, std::uint32_t& failure) {
    TSXbinfile file;
    failure = 0;
    if (file.openread(path) != 1) {
        failure = isAbsence(GetLastError()) ? 0 : GetLastError();
        state = stateOf(path);
        return "could not open";
    }
    state = file.state();
    const char* damage = nullptr;
    if (!hasheader(file, header))
        damage = "invalid header";
    else if (!haschunks(file))
        damage = "invalid tag";
    failure = file.readfailure();
    file.close();
    return damage;
}

} // namespace

void TSXdatabase::scansidefiles(const char* relative, const char* extension, const char* header) {
    Text<1200> pattern;
    pattern.format("%s/%s/*.%s", directory.c_str(), relative, extension);
    logLine(Text<1300>().format("*** Scanning corrupt files at %s ***", pattern.c_str()));
    TSXfinder finder;
    int match = finder.findfirst(pattern);
    notesearch(finder, relative, Unread::part);
    for (; match != 0; match = finder.findnext()) {
        if (finder.entrykind != TSXfinder::file)
            continue;
        Text<1200> path;
        path.format("%s/%s/%s", directory.c_str(), relative, finder.entryname.c_str());
        logLine(Text<1300>().format("   found file '%s'", path.c_str()));
        FileState looked;
        std::uint32_t failure = 0;
        const char* damage = finddamage(path, header, looked, failure);
        if (failure == 0)
            failure = finder.entryfailure;
        if (failure != 0)
            addunreadpath(path.view(), errorText(failure), Unread::part);
        if (damage == nullptr)
            continue;
        logLine(Text<60>().format("        ! corrupt: %s", damage));
        auto problem = std::make_unique<TSXproblem>(*this, corruptsidefile, 0, path);
        problem->looked = looked;
        addproblem(std::move(problem));
    }
    finder.findclose();
}

void TSXdatabase::lookatdisk() {
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
    TSXfinder finder;
    int match = finder.findfirst(pattern);
    notesearch(finder, "Library", Unread::part);
    for (; match != 0; match = finder.findnext()) {
        const std::string path = std::string(directory) + "/Library/" + finder.entryname.c_str();
        if (finder.entrykind == TSXfinder::directory)
            scansidefiles(Text<420>().format("Library/%s", finder.entryname.c_str()), "CMP", rawheaders[0]);
        else if (finder.entryfailure != 0)
            addunreadpath(path, errorText(finder.entryfailure), Unread::part);
        else if (canEnterDirectory(path.c_str()))
            addunreadpath(
                path,
                "It counts as a file, since nobody may write in it or its name begins with a point: "
                "change that to have it read.",
                Unread::told);
    }
    finder.findclose();
}

void TSXdatabase::checkdirectory(const char* fullpath) {
    if (canEnterDirectory(fullpath))
        return;
    if (!isAbsence(GetLastError()))
        addunreadpath(fullpath, errorText(GetLastError()), Unread::part);
    else if (pathExists(fullpath))
        logLine(("   no directory '" + diskname(fullpath) + "': A file of that name stands there.").c_str());
    addproblem(std::make_unique<TSXproblem>(*this, missingdirectory, 1, fullpath));
}

void TSXdatabase::checkdirectories() {
    checkdirectory(directory);
    for (const char* name : treedirectories)
        checkdirectory(Text<700>().format("%s\\%s", directory.c_str(), name));
}
