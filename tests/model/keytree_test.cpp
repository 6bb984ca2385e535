#include "model/keytree.h"

#include <random>
#include <sstream>

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
            EXPECT_GT(heightOf(database->keytree.root), 0) << key;
        }
        Texts flat;
        for (const TSXkeyentry* entry : flattened())
            flat.emplace_back(entry->key);
        return flat;
    }
    std::span<TSXkeyentry* const> flattened() {
        database->keytotal = 0;
        database->keytree.flatten();
        return std::span(database->keyarray).subspan(1);
    }
    std::string index() {
        EXPECT_GE(heightOf(database->keytree.root), 0);
        std::ostringstream text;
        for (const TSXkeyentry* entry : flattened()) {
            text << entry->key;
            for (const Occurrence& use : entry->records())
                text << ' ' << use.type << use.file->name << use.record;
            text << '\n';
        }
        return text.str();
    }
};

} // namespace

TEST_F(KeyTree, StaysBalancedAndSortedInAnyOrderOfInsertion) {
    const Texts sorted = {"", "0", "1", "2", "3", "4"}; // the fewest with which every rotation moves subtrees
    Texts keys = sorted;
    do
        EXPECT_EQ(insertAll(keys), sorted);
    while (std::next_permutation(keys.begin(), keys.end()));
    EXPECT_EQ(database->keytree.find("Abc"), nullptr);
    TSXkeyentry& entry = database->keytree.findoradd("Abc");
    EXPECT_EQ(database->keytree.find("aBC"), &entry);
    EXPECT_EQ(&database->keytree.findoradd("aBC"), &entry);
    EXPECT_EQ(database->keytree.added, 0);
    EXPECT_EQ(entry.key, "Abc");
}

TEST_F(KeyTree, IsBuiltAsIfEachRecordWereAddedInTurn) {
    database->addexptype(1, "type 1");
    std::minstd_rand random(1);
    for (Texts keys; keys.size() < 300; newFile(keys)) {
        keys.emplace_back(random() % 18, 'p');
        for (auto size = random() % 6; size > 0; --size)
            keys.back().push_back("aAbB[_\xff"[random() % 7]);
    }
    const auto& files = database->lists[0]->files;
    for (std::size_t i = 1; i < files.size(); ++i)
        for (std::int32_t& type : files[i]->keytypes)
            type = static_cast<std::int32_t>(random() % 2);
    database->keytree.build();
    const std::string built = index();
    database->keytree.clear();
    for (std::size_t i = 1; i < files.size(); ++i)
        for (std::size_t r = 1; r < files[i]->keys.size(); ++r)
            database->keytree.findoradd(files[i]->keys[r])
                .addoccurrence(files[i]->keytypes[r], *files[i], static_cast<int>(r));
    EXPECT_EQ(index(), built);
}

TEST_F(KeyTree, OccurrencesKeepTheirOrder) {
    database->addexptype(1, "type 1");
    TSXdatafile& made = newFile({});
    TSXkeyentry& entry = database->keytree.findoradd("new");
    for (const int record : {5, 4, 9})
        entry.addoccurrence(1, made, record);
    for (const int type : {2, -1}) {
        entry.addoccurrence(type, made, 1);
        EXPECT_EQ(entry.occurrences(type), 0);
    }
    for (const auto& [type, n] : {std::pair(1, 4), {1, 0}, {2, 1}, {-1, 1}, {1, 1}})
        entry.removeoccurrence(type, n);
    EXPECT_EQ(entry.occurrences(1), 2);
    EXPECT_EQ(entry.occurrence(1, 1).record, 4);
    EXPECT_EQ(entry.occurrence(1, 2).record, 9);
    EXPECT_EQ(entry.occurrence(1, 2).file, &made);
    for (const auto& [type, n] : {std::pair(1, 0), {1, 3}, {2, 1}, {0, 1}, {-1, 1}})
        EXPECT_TRUE(entry.occurrence(type, n).file == nullptr && entry.occurrence(type, n).record == 0);
}
