#include "model/filelist.h"

#include <cstring>
#include <string>

#include "files/finder.h"
#include "model/database.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/problem.h"
#include "platform/system/letters.h"
#include "platform/system/path.h"
#include "reporting/log.h"

namespace {

std::string smallLetters(std::string_view text) {
    std::string result;
    for (const char byte : text)
        result.push_back(static_cast<char>(smallLetter(byte)));
    return result;
}

} // namespace

TSXfilelist::TSXfilelist(TSXdatabase& owner, int fileclass) : database(owner), files(1) {
    const FileClass& format = fileclasses[fileclass];
    Text<700> pattern;
    pattern.format("%s/%s/*.%s", database.directory.c_str(), format.directory, format.extension);
    logLine(Text<800>().format("*** Scanning %s files at %s ***", format.scanlabel, pattern.c_str()));
    database.notetwins(format.directory, Unread::whole);
    TSXfinder finder;
    int match = finder.findfirst(pattern);
    missing = finder.missing;
    database.notesearch(finder, format.directory, Unread::whole);
    for (; match != 0; match = finder.findnext())
        if (finder.entrykind == TSXfinder::file)
            takematch(finder, fileclass);
    finder.findclose();
}

void TSXfilelist::takematch(const TSXfinder& match, int fileclass) {
    const FileClass& format = fileclasses[fileclass];
    Text<1000> path;
    path.format("%s/%s/%s", database.directory.c_str(), format.directory, match.entryname.c_str());
    if (issecondname(match, path))
        return;
    if (count >= maxfiles) {
        database.addunreadpath(path.view(), "There are more than 3000 files of its class.", Unread::whole);
        return;
    }
    std::string basename = match.entryname.c_str();
    basename.resize(basename.size() - std::strlen(format.extension) - 1);
    addfile(format.makefile(database, *this, basename.c_str()));
    if (match.entryfailure != 0)
        files.back()->noteunread(match.entryfailure);
    if (database.fileread)
        database.fileread(*files.back());
}

// A second name of a file would double its keys, and repairs of the one name would undo those of the other.
bool TSXfilelist::issecondname(const TSXfinder& match, const char* fullpath) {
    if (match.entryidentity == FileIdentity())
        return false;
    const auto [known, first] = listed.try_emplace(match.entryidentity, fullpath);
    if (!first)
        database.addunreadpath(fullpath, "It is another name of '" + database.diskname(known->second) + "'.",
                               Unread::told);
    return !first;
}

TSXfilelist::~TSXfilelist() = default;

void TSXfilelist::addfile(std::unique_ptr<TSXdatafile> file) {
    database.keyschanged();
    names.insert(smallLetters(file->name.view()));
    files.push_back(std::move(file));
    ++count;
}

void TSXfilelist::removeat(int position) {
    if (files[static_cast<std::size_t>(position)]->valid == 1)
        database.keyschanged();
    names.erase(smallLetters(files[static_cast<std::size_t>(position)]->name.view()));
    lowestnumber = 1;
    const std::int32_t fileclass = files[static_cast<std::size_t>(position)]->classid;
    for (int i = 1; i <= database.problemcount; ++i) {
        TSXproblem& problem = *database.getproblem(i);
        if (problem.kind != corruptdatafile || problem.subkind != fileclass || problem.fileindex < position)
            continue;
        problem.fileindex = problem.fileindex == position ? 0 : problem.fileindex - 1;
    }
    database.forgetrecords(files[static_cast<std::size_t>(position)]->unreadname);
    files.erase(files.begin() + position);
    --count;
}

void TSXfilelist::reportinvalid(int fileclass) {
    for (int i = 1; i <= count; ++i) {
        const TSXdatafile& file = *files[static_cast<std::size_t>(i)];
        if (file.valid == 1)
            continue;
        auto problem = std::make_unique<TSXproblem>(database, corruptdatafile, fileclass, file.name);
        problem->fileindex = i;
        database.addproblem(std::move(problem));
    }
}

void TSXfilelist::reportempty(int fileclass) {
    for (std::size_t i = 1; i < files.size(); ++i) {
        if (!files[i]->isempty())
            continue;
        database.addproblem(std::make_unique<TSXproblem>(database, emptyfiles, fileclass));
        return;
    }
}

int TSXdbslist::newfile() {
    if (count >= maxfiles)
        return -1;
    const FileClass& format = fileclasses[0];
    Text<20> name;
    const auto islisted = [&](int number) {
        return names.count(smallLetters(name.format("DBSF%03d", number).view())) != 0;
    };
    while (islisted(lowestnumber))
        ++lowestnumber;
    int number = lowestnumber;
    // A file of that name may stand on the disk without being in the list: beyond its limit, or as a
    // directory.
    while (islisted(number) || pathExists(Text<700>()
                                              .format("%s/%s/%s.%s", database.directory.c_str(),
                                                      format.directory, name.c_str(), format.extension)
                                              .view()))
        ++number;
    auto made = format.makefile(database, *this, name);
    if (made->unread) // whether its name is free can't be known
        return -1;
    addfile(std::move(made));
    return count;
}
