// What each solution does to the data files, and how one record gets another key. The index that is used here
// is that of the last analysis.
#include <algorithm>
#include <map>

#include "model/database.h"
#include "model/datafile.h"
#include "model/keyentry.h"
#include "platform/system/letters.h"
#include "platform/system/messagebox.h"
#include "reporting/report.h"

namespace {

constexpr std::size_t maxcandidatelength = maxkeylength - 1;
constexpr std::string_view suffixmark = "/#";

// Finds keys that a type doesn't use, with the lowest number that is free. Numbers once found taken are not
// tried again, so that many duplicates of one key cost no more than they are.
class FreeKeys {
public:
    FreeKeys(TSXkeytree& keytree, int keytype) : tree(keytree), type(keytype) {}

    // The key for one more record; the index is left as it is.
    std::string next(std::string_view key) {
        return firstfree(key, [this](const std::string& candidate) {
            const TSXkeyentry* entry = tree.find(candidate);
            return entry == nullptr || entry->occurrences(type) == 0;
        });
    }

    // Gives a record the next key, in its file and in the index. That is one way down the tree for each key
    // that is tried, the last of which makes the entry.
    void rename(TSXdatafile& file, int record, std::string_view key) {
        if (!file.ischangeable(record)) {
            file.clearkey(record); // which notes why it is left out
            return;
        }
        TSXkeyentry* entry = nullptr;
        const std::string free = firstfree(key, [&](const std::string& candidate) {
            entry = &tree.findoradd(candidate);
            return entry->occurrences(type) == 0;
        });
        file.setkey(record, free.c_str());
        entry->addoccurrence(type, file, record);
    }

private:
    // Where the last search has ended. One for the same key begins there: of fewer digits all were tried.
    struct Reached {
        std::string key;
        int digits = 0;
        int end = 2; // behind the numbers of that many digits
        std::string stem;
        int* number = nullptr; // in numbers
    };

    // The numbers with one digit more.
    void widen() {
        const int first = reached.end;
        reached.end = ++reached.digits == 1 ? 10 : first * 10;
        reached.stem = reached.key.substr(0, maxcandidatelength - suffixmark.size() -
                                                 static_cast<std::size_t>(reached.digits));
        reached.stem += suffixmark;
        reached.number = &numbers.try_emplace({reached.digits, reached.stem}, first).first->second;
    }

    template <class Test> std::string firstfree(std::string_view key, Test isfree) {
        if (key != reached.key)
            reached = {std::string(key), 0, 2, {}, nullptr};
        for (;;) {
            while (reached.number == nullptr || *reached.number >= reached.end)
                widen();
            std::string candidate = reached.stem + std::to_string((*reached.number)++);
            if (isfree(candidate)) // else it is taken; now it is by this record
                return candidate;
        }
    }

    struct IgnoringCase {
        bool operator()(const std::pair<int, std::string>& a, const std::pair<int, std::string>& b) const {
            return a.first != b.first ? a.first < b.first : compareIgnoringCase(a.second, b.second) < 0;
        }
    };

    TSXkeytree& tree;
    int type;
    Reached reached;
    // By the number's digits and the text in front of it, the lowest number that was not yet tried.
    std::map<std::pair<int, std::string>, int, IgnoringCase> numbers;
};

// Whether a record that could be read uses the key: of the others it is not known what key they have.
bool isread(const TSXkeyentry& entry) {
    const auto records = entry.records();
    return std::any_of(records.begin(), records.end(),
                       [](const Occurrence& use) { return !use.file->isunread(use.record); });
}

// Reports why a key is not changed. The result of an operation that was refused.
int refuse(const std::string& why) {
    report((why + ". Nothing was changed").c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
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
    const auto unread = [](const Occurrence& used) { return used.file->isunread(used.record); };
    if (database.picturecomplete() && std::none_of(entry.records().begin(), entry.records().end(), unread)) {
        for (const Occurrence& used : entry.records())
            if (!used.file->ischangeable(used.record))
                return used.file->whyleft(used.record);
        return {};
    }
    return "A key can't be renamed while records that may use it are unread. Make them readable, or restore "
           "them, and start again";
}

} // namespace

void TSXdatabase::uniquekey(std::string& text, int type) {
    text = FreeKeys(keytree, type).next(text);
}

void TSXdatabase::foreachduplicate(int type, const std::function<void(const TSXkeyentry&, int)>& operation) {
    if (type < 0 || type > lasttype)
        return;
    for (std::size_t i = 1; i < keyarray.size(); ++i) {
        const TSXkeyentry& entry = *keyarray[i];
        const int count = entry.key.empty() ? 0 : entry.occurrences(type);
        bool used = false; // by a record that could be read; what could not be read is no duplicate of any
        for (int n = 1; n <= count; ++n) {
            const Occurrence use = entry.occurrence(type, n);
            if (use.file->isunread(use.record))
                continue;
            if (used)
                operation(entry, n);
            used = true;
        }
    }
}

void TSXdatabase::removeduplicates(int type) {
    foreachduplicate(type, [type](const TSXkeyentry& entry, int n) {
        const Occurrence later = entry.occurrence(type, n);
        later.file->clearkey(later.record);
    });
}

void TSXdatabase::renameduplicates(int type) {
    FreeKeys freekeys(keytree, type);
    foreachduplicate(type, [&](const TSXkeyentry& entry, int n) {
        const Occurrence later = entry.occurrence(type, n);
        freekeys.rename(*later.file, later.record, entry.key);
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
    auto& list = static_cast<TSXdbslist&>(*lists[0]);
    TSXdatafile* current = nullptr;
    for (std::size_t i = 1; i < keyarray.size(); ++i) {
        if (!keyarray[i]->isorphan() || !isread(*keyarray[i]))
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
    if (moved.file->isunread(moved.record))
        return refuse("Record " + std::to_string(moved.record) + " of '" + diskname(moved.file->path.view()) +
                      "' could not be read. Make it readable, or restore it, and start again");
    if (!moved.file->ischangeable(moved.record))
        return refuse(moved.file->whyleft(moved.record));
    TSXkeyentry& target = findoraddkey(text);
    if (target.occurrences(type) > 0 && report(type == 0 ? "This database entry exists already. Continue?"
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
