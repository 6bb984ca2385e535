// The key index: an AVL tree with one entry for each distinct key, compared ignoring the case of ASCII
// letters. It is derived from the key tables, built anew by each analysis pass, and never saved.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/system/cobject.h"

class TSXdatabase;
class TSXkeyentry;

class TSXkeytree : public CObject {
public:
    explicit TSXkeytree(TSXdatabase& owner);
    ~TSXkeytree() override;

    // The entry of the key, none if there is none.
    TSXkeyentry* find(std::string_view key) const;
    // The entry of the key, made if there is none. It stays in the tree until clear.
    TSXkeyentry& findoradd(std::string_view key);
    void clear();
    // Appends all entries in key order to the keytotal keys in keyarray of the database, and counts them
    // there.
    void flatten();

    TSXdatabase& database;
    std::unique_ptr<TSXkeyentry> root;
    std::int32_t added = 0; // 1 if the last findoradd made a new entry

private:
    using Link = std::unique_ptr<TSXkeyentry>;
    TSXkeyentry& insert(Link& link, std::string_view key, bool& taller);
    static bool grow(Link& link, int side);
    static void repairleft(Link& link);
    static void repairright(Link& link);
    void walk(TSXkeyentry* entry);
};
