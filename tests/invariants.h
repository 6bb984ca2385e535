// What must hold of an analysed database whatever its files hold. The tests of the key tree and the
// fuzz targets test it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>

#include "model/database.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/letters.h"

// What the last analysis has found.
inline std::string analysisText(const TSXdatabase& database) {
    std::string text;
    for (int i = 1; i <= database.problemcount; ++i)
        text.append(database.getproblem(i)->message).append("\n");
    for (int i = 0; i <= database.lasttype; ++i)
        text += std::to_string(database.gettype(i)->entrycount) + "\n";
    for (int i = 1; i <= database.visiblecount; ++i)
        text.append(database.getvisiblekey(i)->key).append("\n");
    return text;
}

inline bool soundTable(const TSXdatafile& file) {
    const auto size = static_cast<std::size_t>(file.keycount) + 1;
    const auto isKey = [](std::string_view key) {
        return key.size() <= 60 && key.find('\0') == std::string::npos;
    };
    const auto isType = [&](std::int32_t type) { return type >= 0 && type <= file.database.lasttype; };
    const bool agree = file.keys.size() == size && file.keytypes.size() == size &&
                       file.keypos.size() == size && file.keydirty.size() == size;
    return file.keycount >= 0 && file.keycount <= 1000 && isType(file.typeid_) &&
           (agree || file.keycount == 0) && std::all_of(file.keys.begin(), file.keys.end(), isKey) &&
           std::all_of(file.keytypes.begin(), file.keytypes.end(), isType);
}

// Only a new file of entries is usable and not on the disk; its records have no place there.
inline bool soundFlags(const TSXdatafile& file) {
    return file.ondisk == 1 ||
           ((file.valid == 0 || file.classid == 0) &&
            std::all_of(file.keypos.begin(), file.keypos.end(), [](auto at) { return at <= 0; }));
}

// The height of the tree below; -1 if it is out of balance.
inline int heightOf(const TSXkeyentry* entry) {
    if (entry == nullptr)
        return 0;
    const int left = heightOf(entry->left);
    const int right = heightOf(entry->right);
    const bool sound =
        left >= 0 && right >= 0 && std::abs(right - left) <= 1 && entry->balance == right - left;
    return sound ? std::max(left, right) + 1 : -1;
}

// The first rule that is broken; none when all hold.
inline const char* brokenRule(TSXdatabase& database) {
    long indexed = 0;
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i) {
            const TSXdatafile& file = *list->files[i];
            if (!soundTable(file) || !soundFlags(file))
                return soundTable(file) ? "the flags of a file agree" : "the table of a file agrees";
            indexed += file.valid == 1 ? file.keycount : 0;
        }
    if (heightOf(database.keytree.root) < 0 || database.lasttype > maxtypes)
        return "the key tree is balanced, and there are at most 200 types";
    for (std::size_t i = 1; i < database.keyarray.size(); ++i) {
        if (i > 1 && compareIgnoringCase(database.keyarray[i - 1]->key, database.keyarray[i]->key) >= 0)
            return "keys ascend";
        indexed -= static_cast<long>(database.keyarray[i]->records().size());
    }
    if (indexed != 0)
        return "each record of a valid file is indexed once";
    const std::string before = analysisText(database);
    database.analyse();
    return analysisText(database) == before ? nullptr : "a second analysis finds the same";
}
