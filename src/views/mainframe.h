// The one main window: the problem list across the top, the data types and the keys below it. It carries out
// the commands of the menu and of the "Solve" menus and knows the open entry windows. It reads the model at
// each paint and keeps no copy of it; row numbers that the lists have outgrown select nothing.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "toolkit/frame.h"

class SessionUndo;
class TSXentriespane;
class TSXentryframe;
class TSXkeyentry;
class TSXproblem;
class TSXproblempane;
class TSXtypespane;

class TSXmainframe : public TSXframe {
public:
    TSXmainframe(); // makes no window
    ~TSXmainframe() override;

    // Makes the window, titled with the current database, when the model is there.
    void createMainWindow();
    // Closes all entry windows, analyses anew and repaints.
    void rebuildDatabase();
    // Opens the entry window of the selected key, or brings it to the front where there is one. Beeps where
    // no key is selected; with 50 windows open nothing happens.
    void openEntryWindow();
    void entryWindowClosed(const TSXentryframe& window); // frees its place; called by its destructor
    // Moves occurrence n of the key in a type to another key, as TSXdatabase::changekey does, and repaints.
    void changeKey(TSXkeyentry& entry, int type, int n, const char* text);
    void describeProblem(); // the selected one, and what its solutions cost, in the status bar

    void paintFrame(CDC& dc) override;
    void frameCreated() override;
    void frameCommand(std::uint32_t id) override;
    void frameSized(int type, int width, int height) override;
    int canClose() override; // asks where there are unsaved changes

    std::unique_ptr<TSXtypespane> typesPane;
    std::unique_ptr<TSXentriespane> entriesPane;
    std::unique_ptr<TSXproblempane> problemPane;
    std::int32_t selectedType = 0;                    // row of the types; always that of "Database"
    std::int32_t selectedKey = 1;                     // row of the visible keys, from 1
    std::int32_t selectedProblem = 1;                 // row of the problem list, from 1
    std::array<TSXentryframe*, 50> entryWindows = {}; // a free place is null

private:
    void rebuildCommand();
    void undoCommand();
    void updateScrollRanges();
    void showAllEntries();
    bool save();                       // false when something is left unsaved, which was told
    void say(const std::string& text); // in the status bar, before what it always says
    void solveProblem(std::uint32_t command);
    void solve(const TSXproblem& problem, int number);
    void closeEntryWindows();

    std::unique_ptr<SessionUndo> undo; // from the creation of the window on
    std::string said;
};
