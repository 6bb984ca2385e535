#include "model/keytree.h"

#include "databasetest.h"
#include "invariants.h"

namespace {

class KeyTree : public DatabaseTest {
protected:
    KeyTree() { load(); }
    Texts insertAll(const Texts& keys) {
        database->keytree.clear();
        for (const std::string& key : keys) {
            EXPECT_EQ(database->keytree.findoradd(key).key, key);
            EXPECT_EQ(database->keytree.added, 1);
            EXPECT_GT(heightOf(database->keytree.root.get()), 0) << key;
        }
        database->keytotal = 0;
        database->keytree.flatten();
        Texts flat;
        for (int i = 1; i <= database->keytotal; ++i)
            flat.push_back(database->keyarray[static_cast<std::size_t>(i)]->key);
        return flat;
    }
};

} // namespace

TEST_F(KeyTree, StaysBalancedAndSortedInAnyOrderOfInsertion) {
    // A prefix is smaller, capitals count as small letters, other bytes as they stand, unsigned: '_' is
    // before 'A'.
    Texts sorted = {"", " ", "1", "10", "2", "[", "_", "a", "AB", "abc", "b", "Z", "{", "\x80", "\xff"};
    for (char c = 'a'; c <= 'z'; ++c)
        sorted.insert(sorted.end() - 4, std::string("b") + c);
    Texts keys = sorted;
    for (const std::size_t step : {1u, 40u, 2u, 3u, 5u, 7u, 13u, 17u, 20u}) { // 41 keys; 40 is descending
        for (std::size_t i = 0; i < keys.size(); ++i)
            keys[i] = sorted[i * step % sorted.size()];
        EXPECT_EQ(insertAll(keys), sorted) << step;
    }
    keys = {"0", "1", "2", "3", "4", "5"}; // the fewest with which every rotation has subtrees to move
    do
        EXPECT_EQ(insertAll(keys), (Texts{"0", "1", "2", "3", "4", "5"}));
    while (std::next_permutation(keys.begin(), keys.end()));
    EXPECT_EQ(insertAll({}), Texts());

    EXPECT_EQ(database->keytree.find("Abc"), nullptr);
    TSXkeyentry& entry = database->keytree.findoradd("Abc");
    EXPECT_EQ(database->keytree.find("aBC"), &entry);
    EXPECT_EQ(&database->keytree.findoradd("aBC"), &entry);
    EXPECT_EQ(database->keytree.added, 0);
    EXPECT_EQ(entry.key, "Abc");
}

TEST_F(KeyTree, OccurrencesKeepTheirOrder) {
    database->addexptype(1, "type 1");
    TSXdatafile& made = newFile({});
    TSXkeyentry& entry = database->keytree.findoradd("new");
    for (const int record : {5, 4, 9})
        entry.addoccurrence(1, made, record);
    for (const int type : {2, -1})
        entry.addoccurrence(type, made, 1);
    EXPECT_EQ(entry.occurrences(2) + entry.occurrences(-1) + entry.occurrences(0), 0);
    for (const auto& [type, n] : {std::pair(1, 4), {1, 0}, {2, 1}, {-1, 1}, {1, 1}})
        entry.removeoccurrence(type, n);
    EXPECT_EQ(entry.occurrences(1), 2);
    EXPECT_EQ(entry.occurrence(1, 1).record, 4);
    EXPECT_EQ(entry.occurrence(1, 2).record, 9);
    EXPECT_EQ(entry.occurrence(1, 2).file, &made);
    for (const auto& [type, n] : {std::pair(1, 0), {1, 3}, {2, 1}, {0, 1}, {-1, 1}})
        EXPECT_TRUE(entry.occurrence(type, n).file == nullptr && entry.occurrence(type, n).record == 0);
}

TEST_F(KeyTree, AKeyAddedBetweenPassesIsLastAndVisible) {
    newFile({"b", "c"});
    database->analyse();
    EXPECT_EQ(database->getvisiblekey(1), nullptr);
    TSXkeyentry& added = database->findoraddkey("a");
    database->findoraddkey("C");
    EXPECT_EQ(database->keytotal * 10 + database->visiblecount, 31);
    EXPECT_EQ(database->keyarray[3], &added);
    EXPECT_EQ(database->getvisiblekey(1), &added);
    database->showallkeys();
    EXPECT_EQ(database->visiblecount, 3);
    EXPECT_EQ(database->getvisiblekey(2)->key, "c");
    EXPECT_TRUE(database->getvisiblekey(0) == nullptr && database->getvisiblekey(4) == nullptr);
    database->analyse();
    EXPECT_EQ(database->keytotal * 10 + database->visiblecount, 20);
}
