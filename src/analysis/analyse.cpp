// The analysis pass: what the key tables in memory and the directory tree on disk have wrong with them, as
// the problem list and the visible keys.
#include <numeric>

#include "model/database.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "model/problem.h"

void TSXdatabase::load(const char* directorytext) {
    readlists(directorytext);
    analyse();
}

void TSXdatabase::analyse() {
    clearproblems();
    lookatdisk();
    for (int i = 0; i <= lastlist; ++i)
        lists[static_cast<std::size_t>(i)]->reportinvalid(i);
    for (int i = 0; i <= lastlist; ++i)
        lists[static_cast<std::size_t>(i)]->reportempty(i);
    if (!keysjudged)
        judgekeys();
    for (const auto& [kind, type] : keyproblems)
        addproblem(std::make_unique<TSXproblem>(*this, kind, type));
}

void TSXdatabase::judgekeys() {
    constexpr int indexedpercent = 75; // of the time that it takes
    keyproblems.clear();
    visiblekeys.resize(1);
    if (judged)
        judged(0);
    indexfiles();
    if (judged)
        judged(indexedpercent);
    findproblems();
    visiblecount = static_cast<std::int32_t>(visiblekeys.size()) - 1;
    keysjudged = true;
}

void TSXdatabase::indexfiles() {
    for (const auto& type : types)
        type->filecount = type->entrycount = 0;
    for (const auto& list : lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            if (list->files[i]->valid != 0)
                countfile(*list->files[i]);
    keytree.build();
    keytotal = 0;
    keytree.flatten();
}

void TSXdatabase::countfile(const TSXdatafile& file) {
    ++gettype(file.typeid_)->filecount;
    for (std::int32_t r = 1; r <= file.keycount; ++r)
        ++gettype(file.keytypes[static_cast<std::size_t>(r)])->entrycount;
}

// One walk over the keys serves all types. An empty key that several experiments share is no fault: it stands
// for experiments that are tied to no entry.
void TSXdatabase::findproblems() {
    std::vector<bool> named(types.size());
    bool blank = false;
    bool orphans = false;
    for (std::int32_t i = 1; i <= keytotal; ++i) {
        TSXkeyentry& entry = *keyarray[static_cast<std::size_t>(i)];
        entry.shown = entry.isorphan() ? 1 : 0;
        orphans = orphans || entry.shown == 1;
        entry.foreachlist([&](std::span<const Occurrence> list) {
            const std::int32_t type = list.front().type;
            if (list.size() < 2 || (entry.key.empty() && type != 0))
                return;
            entry.shown = 1;
            if (entry.key.empty())
                blank = true;
            else
                named[static_cast<std::size_t>(type)] = true;
        });
        if (entry.shown == 1)
            visiblekeys.push_back(i);
    }
    for (std::int32_t type = 0; type <= lasttype; ++type) {
        if (named[static_cast<std::size_t>(type)])
            keyproblems.emplace_back(duplicatekeys, type);
        if (type == 0 && blank)
            keyproblems.emplace_back(blankkeys, 0);
    }
    if (orphans)
        keyproblems.emplace_back(orphankeys, 0);
}

void TSXdatabase::showallkeys() {
    keyschanged();
    visiblekeys.resize(keyarray.size());
    std::iota(visiblekeys.begin(), visiblekeys.end(), 0);
    visiblecount = keytotal;
}
