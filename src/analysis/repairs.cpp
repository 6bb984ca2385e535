// What each solution does to the data files, and how one record gets another key. The index that is used here
// is that of the last analysis.
#include <algorithm>
#include <charconv>
#include <map>

#include "model/database.h"
#include "model/datafile.h"
#include "model/keyentry.h"
#include "platform/system/letters.h"
#include "platform/system/messagebox.h"
#include "reporting/notify.h"

namespace {

constexpr std::size_t maxcandidatelength = maxkeylength - 1;
constexpr std::string_view suffixmark = "/#";

bool couldnotberead(const Occurrence& use) {
    return use.file->isunread(use.record);
}

// Gives records keys that a type doesn't use, each with the lowest number that is free. Numbers once found
// taken are not tried again, so that many duplicates of one key cost no more than they are.
class FreeKeys {
public:
    FreeKeys(TSXkeytree& keytree, int keytype) : tree(keytree), type(keytype) {}

    // In its file and in the index.
    void rename(TSXdatafile& file, int record, std::string_view key) {
        if (!file.ischangeable(record)) {
            file.clearkey(record); // which notes why it is left out
            return;
        }
        TSXkeyentry& entry = uniquekey(key);
        file.setkey(record, candidate.c_str());
        entry.addoccurrence(type, file, record);
    }

private:
    TSXkeyentry& uniquekey(std::string_view key) {
        if (key != base) {
            base = key;
            digits = 0;
            end = 2;
        }
        for (;;) {
            while (number == nullptr || *number >= end)
                widen();
            char text[12];
            candidate.resize(stemsize);
            candidate.append(text, std::to_chars(std::begin(text), std::end(text), (*number)++).ptr);
            if (TSXkeyentry& entry = tree.findoradd(candidate); entry.occurrences(type) == 0)
                return entry;
        }
    }

    // The numbers with one digit more.
    void widen() {
        const int first = end;
        end = ++digits == 1 ? 10 : first * 10;
        candidate = base.substr(0, maxcandidatelength - suffixmark.size() - static_cast<std::size_t>(digits));
        candidate += suffixmark;
        stemsize = candidate.size();
        number = &numbers.try_emplace(std::to_string(digits) + candidate, first).first->second;
    }

    TSXkeytree& tree;
    int type;
    // Where the last search has ended. One for the same key begins there: of fewer digits all were tried.
    std::string base;
    int digits = 0;
    int end = 2;           // after the numbers of that many digits
    std::string candidate; // begins with the stem
    std::size_t stemsize = 0;
    int* number = nullptr; // in numbers
    // By the number of digits and the stem before them, the lowest number that was not yet tried.
    std::map<std::string, int, BeforeIgnoringCase> numbers;
};

// Calls operation with each later occurrence, from number 2 on, of each key in that type. What could not be
// read is no duplicate of any.
template <class Operation> void foreachduplicate(const TSXdatabase& database, int type, Operation operation) {
    for (const TSXkeyentry* entry : database.keyarray) {
        bool used = false;
        if (entry == nullptr || entry->key.empty())
            continue;
        for (const Occurrence& use : entry->list(type)) {
            if (couldnotberead(use))
                continue;
            if (used)
                operation(entry->key, use);
            used = true;
        }
    }
}

// Tells why a key is not changed. The result of an operation that was refused.
int refuse(const std::string& why) {
    notify((why + ". Nothing was changed").c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
    return -1;
}

int refusetoolong() {
    return refuse("The new key is too long: a key has at most " + std::to_string(maxkeylength) + " bytes");
}

// Why the records of a key can't all get another one; empty where they can.
std::string obstacletorenaming(const TSXdatabase& database, const TSXkeyentry& entry, const char* text) {
    const TSXkeyentry* target = database.keytree.find(text);
    if (target != nullptr && !target->records().empty())
        return std::string("The key '") + text + "' is in use already";
    if (!database.picturecomplete() || std::ranges::any_of(entry.records(), couldnotberead))
        return "A key can't be renamed while records that may use it are unread. Make them readable, or "
               "restore them, and " +
               std::string(inspectAgain);
    for (const Occurrence& used : entry.records())
        if (!used.file->ischangeable(used.record))
            return used.file->whyleft(used.record);
    return {};
}

} // namespace

void TSXdatabase::removeduplicates(int type) {
    foreachduplicate(*this, type,
                     [](std::string_view, const Occurrence& later) { later.file->clearkey(later.record); });
}

void TSXdatabase::renameduplicates(int type) {
    FreeKeys freekeys(keytree, type);
    foreachduplicate(*this, type, [&](std::string_view key, const Occurrence& later) {
        freekeys.rename(*later.file, later.record, key);
    });
}

void TSXdatabase::createkeys() {
    FreeKeys freekeys(keytree, 0);
    const TSXfilelist& list = *lists[0];
    for (std::size_t i = 1; i < list.files.size(); ++i) {
        TSXdatafile& file = *list.files[i];
        for (std::int32_t r = 1; r <= file.keycount; ++r)
            if (file.keys[static_cast<std::size_t>(r)].empty() && !file.isunread(r))
                freekeys.rename(file, r, "dbkey");
    }
}

void TSXdatabase::removeexperimentkeys() {
    for (std::size_t i = 1; i < keyarray.size(); ++i) {
        if (!keyarray[i]->isorphan())
            continue;
        for (const Occurrence& occurrence : keyarray[i]->records())
            occurrence.file->clearkey(occurrence.record);
    }
}

void TSXdatabase::adddatabaseentries() {
    constexpr int maxadded = 100; // entries in one new file
    TSXfilelist& list = *lists[0];
    TSXdatafile* current = nullptr;
    for (std::size_t i = 1; i < keyarray.size(); ++i) {
        if (!keyarray[i]->isorphan() || std::ranges::all_of(keyarray[i]->records(), couldnotberead))
            continue;
        if (current == nullptr || current->keycount >= maxadded) {
            const int position = list.newfile();
            if (position == -1)
                return; // the keys that are left stay a problem, which the next analysis tells
            current = list.files[static_cast<std::size_t>(position)].get();
        }
        current->addentry(keyarray[i]->key.data());
    }
}

int TSXdatabase::changekey(TSXkeyentry& entry, int type, int n, const char* text) {
    if (equalIgnoringCase(text, entry.key))
        return 0;
    if (std::string_view(text).size() > maxkeylength)
        return refusetoolong();
    const Occurrence moved = entry.occurrence(type, n);
    if (moved.file == nullptr)
        return -1;
    if (couldnotberead(moved))
        return refuse("Record " + std::to_string(moved.record) + " of '" + diskname(moved.file->path.view()) +
                      "' could not be read. Make it readable, or restore it, and " + inspectAgain);
    if (!moved.file->ischangeable(moved.record))
        return refuse(moved.file->whyleft(moved.record));
    TSXkeyentry& target = findoraddkey(text);
    if (target.occurrences(type) > 0 && notify(type == 0 ? "This database entry exists already. Continue?"
                                                         : "This experiment exists already. Continue?",
                                               "Warning", MB_YESNO | MB_ICONEXCLAMATION) != IDYES)
        return -1;
    entry.removeoccurrence(type, n);
    target.addoccurrence(type, *moved.file, moved.record);
    moved.file->setkey(moved.record, text);
    return 1;
}

int TSXdatabase::renamekey(const TSXkeyentry& entry, const char* text) {
    if (equalIgnoringCase(text, entry.key))
        return 0;
    if (std::string_view(text).size() > maxkeylength)
        return refusetoolong();
    if (const std::string obstacle = obstacletorenaming(*this, entry, text); !obstacle.empty())
        return refuse(obstacle);
    for (const Occurrence& used : entry.records())
        used.file->setkey(used.record, text);
    return 1;
}
