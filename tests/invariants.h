// What must hold of an analysed database whatever its files hold. The fixtures, the hostile files and the
// fuzz targets test it.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>

#include "analysis/problem.h"
#include "model/database.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "platform/system/letters.h"

// What the last analysis has found.
inline std::string analysisText(const TSXdatabase& database) {
    std::ostringstream text;
    for (int i = 1; i <= database.problemcount; ++i)
        text << database.getproblem(i)->kind << ' ' << database.getproblem(i)->message.view() << '\n';
    for (int i = 0; i <= database.lasttype; ++i)
        text << database.gettype(i)->filecount << ' ' << database.gettype(i)->entrycount << '\n';
    for (int i = 1; i <= database.visiblecount; ++i)
        text << database.getvisiblekey(i)->key << '\n';
    return text.str();
}

// Each of these gives the first rule that is broken, none when all hold.
inline const char* brokenFileRule(const TSXdatafile& file) {
    const auto size = static_cast<std::size_t>(file.keycount) + 1;
    const auto isKey = [](const std::string& key) {
        return key.size() <= maxkeylength && key.find('\0') == std::string::npos;
    };
    const auto isType = [&](std::int32_t type) { return type >= 0 && type <= file.database.lasttype; };
    if (file.keycount < 0 || file.keycount > maxrecords)
        return "a table has 0 to 1000 records";
    if (file.keycount > 0 && (file.keys.size() != size || file.keytypes.size() != size ||
                              file.keypos.size() != size || file.keydirty.size() != size))
        return "the arrays of a table agree";
    if (!std::all_of(file.keys.begin(), file.keys.end(), isKey))
        return "a key has at most 60 bytes and no NUL";
    if (!isType(file.typeid_) || !std::all_of(file.keytypes.begin(), file.keytypes.end(), isType))
        return "a type that is named exists";
    if (file.ondisk == 0 && file.valid == 1 && file.classid != 0)
        return "an experiment file is never a new one";
    if (file.ondisk == 0 && std::any_of(file.keypos.begin(), file.keypos.end(), [](auto p) { return p > 0; }))
        return "a file that is not on the disk has no record there";
    return nullptr;
}

// The height of the tree below; -1 if it is out of balance.
inline int heightOf(const TSXkeyentry* entry) {
    if (entry == nullptr)
        return 0;
    const int left = heightOf(entry->left.get());
    const int right = heightOf(entry->right.get());
    const bool sound =
        left >= 0 && right >= 0 && std::abs(right - left) <= 1 && entry->balance == right - left;
    return sound ? std::max(left, right) + 1 : -1;
}

inline const char* brokenIndexRule(const TSXdatabase& database) {
    if (heightOf(database.keytree.root.get()) < 0)
        return "the key tree is balanced";
    if (database.keyarray.size() != static_cast<std::size_t>(database.keytotal) + 1)
        return "the key array has all keys";
    for (std::size_t i = 2; i < database.keyarray.size(); ++i)
        if (compareIgnoringCase(database.keyarray[i - 1]->key, database.keyarray[i]->key) >= 0)
            return "keys ascend";
    long occurrences = 0;
    long records = 0;
    for (std::size_t i = 1; i < database.keyarray.size(); ++i)
        for (int type = 0; type <= database.lasttype; ++type)
            occurrences += database.keyarray[i]->occurrences(type);
    for (int type = 0; type <= database.lasttype; ++type)
        records += database.gettype(type)->entrycount;
    return occurrences == records ? nullptr : "each record is indexed once";
}

inline const char* brokenRule(TSXdatabase& database) {
    for (const auto& list : database.lists)
        for (std::size_t i = 1; i < list->files.size(); ++i)
            if (const char* rule = brokenFileRule(*list->files[i]))
                return rule;
    if (database.lasttype > maxtypes)
        return "there are at most 200 types";
    if (const char* rule = brokenIndexRule(database))
        return rule;
    const std::string before = analysisText(database);
    database.analyse();
    return analysisText(database) == before ? nullptr : "a second analysis finds the same";
}
