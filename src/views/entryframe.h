// The window of one key: the names of the experiment types on the left, on the right a grid with a cell for
// each record that uses the key. The selected record can be given another key; TSXdatabase::changekey refuses
// one of more than 60 bytes. The window does not outlive the key index: the main window closes it before an
// analysis.
#pragma once

#include <cstdint>
#include <memory>

#include "toolkit/frame.h"

class TSXdatabase;
class TSXentrygridpane;
class TSXentrytypespane;
class TSXkeyentry;
class TSXmainframe;

class TSXentryframe : public TSXframe {
public:
    TSXentryframe(TSXmainframe& main, TSXdatabase& owner, TSXkeyentry& entry); // makes no window
    ~TSXentryframe() override;

    void createEntryWindow(); // in front of the main window, and goes with it
    bool showsKey(const TSXkeyentry& entry) const { return &entry == &key; }
    // Keeps the selection within the key's present records and repaints.
    void refreshEntry();
    // Makes the selected occurrence one that the selected type has; 1 where it has none.
    void limitSelection();

    void paintFrame(CDC& dc) override;
    void frameCreated() override;
    void frameCommand(std::uint32_t id) override;
    void frameSized(int type, int width, int height) override;

    void changeKeyCommand(); // asks for another key of the selected record

    TSXdatabase& database;
    TSXmainframe& mainWindow;
    std::int32_t selectedType = 0;
    std::int32_t selectedOccurrence = 1; // of that type, from 1, also where there is none
    TSXkeyentry& key;
    std::unique_ptr<TSXentrygridpane> gridPane;
    std::unique_ptr<TSXentrytypespane> typeNamesPane;
};
