// One run over a database: the hold, the load, the steps of the command line, the save. What happened stands
// in the fields for the reports.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "changes/finish.h"
#include "known.h"
#include "model/database.h"
#include "options.h"
#include "platform/system/hold.h"
#include "steps.h"

class PageForm;

// A database as it is told in a line where there are several.
struct Line {
    std::string label, text;
    int status;
    bool loaded;
};

// What the runs of one command line share.
struct Together {
    bool several = false;
    PageForm& page;
    const std::vector<std::string>& directories; // of all databases
    std::string known;                           // of what --write-known writes, so far
    std::vector<Line> lines;                     // of the databases so far
};

class Session {
public:
    Session(const Options& given, Together& with, std::string database);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    // Takes hold of the database and starts the log. False when that can't be done, which has been told;
    // nothing else has been touched then.
    bool open(const std::string& directory);
    // Loads the database and takes the steps.
    void run();
    // Brings the database back to what it was before the changes of an undo file, and loads it then.
    void restoreFrom(const std::string& undoFile);
    // The sum of what applies of the exit statuses.
    int status() const;
    // Whether a solution was applied or something on the disk was changed; in a plan, would be.
    std::string undoFile() const; // of what was changed on the disk; empty where there is none
    bool changedSomething() const { return !steps.solved.empty() || !database.changes.empty(); }

    TSXdatabase database;
    const std::string label; // the database, as the person knows it
    Known known;
    Steps steps;
    int explained = 0;                       // the row that is to be explained; 0: none
    const Unread* explainedUnread = nullptr; // the same
    bool loaded = false;
    bool saved = false; // a save was asked for, and nothing is left unsaved

private:
    bool finishEarlier();
    CommitOptions commitOptions();
    std::string laterUndoFile(const std::string& undoFile) const;
    int answer(const char* text, const char* title, std::uint32_t flags);
    bool save();
    void findExplained();
    void writeKnown();
    void writePage();

    const Options& options;
    Together& together;
    HANDLE marker = INVALID_HANDLE_VALUE;
    std::string ownUndoFile; // of a restore
    Finished earlier;        // what an earlier run had left
};
