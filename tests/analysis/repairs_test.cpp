#include <set>

#include "databasetest.h"
#include "platform/system/letters.h"

namespace {

class Repairs : public DatabaseTest {
protected:
    std::string unique(std::string text, int type) {
        database->uniquekey(text, type);
        return text;
    }
};

std::string small(std::string text) {
    for (char& byte : text)
        byte = static_cast<char>(smallLetter(byte));
    return text;
}

// The rule for a free key, in its plainest form.
std::string freeKey(std::set<std::string>& taken, const std::string& key) {
    for (int n = 2;; ++n) {
        const std::string suffix = "/#" + std::to_string(n);
        const std::string candidate = key.substr(0, 59 - suffix.size()) + suffix;
        if (taken.insert(small(candidate)).second)
            return candidate;
    }
}

const std::string longKey = std::string(55, 'k') + "12345";

} // namespace

TEST_F(Repairs, UniqueKeyIsTheLowestThatTheTypeDoesNotUse) {
    Texts taken = {"x", "X/#2", "x/#3", "y/#3"};
    for (int n = 2; n <= 99; ++n)
        taken.push_back(longKey.substr(0, n < 10 ? 56 : 55) + "/#" + std::to_string(n));
    put(0, "A", dataFile(0, "", taken));
    put(1, "A", dataFile(1, "G", {"x/#2", "x/#4"}));
    load();
    EXPECT_EQ(unique("x", 0), "x/#4");
    EXPECT_EQ(unique("x", 1), "x/#3");
    EXPECT_EQ(unique("y", 0), "y/#2");
    EXPECT_EQ(unique("", 0), "/#2");
    EXPECT_EQ(unique(longKey, 1), longKey.substr(0, 56) + "/#2");
    EXPECT_EQ(unique(longKey, 0), longKey.substr(0, 54) + "/#100");
    EXPECT_EQ(database->keytotal, 103);
    database->analyse();
    EXPECT_EQ(database->keytotal, 103) << "what was only tried is gone";
}

// Keys whose cut forms meet, that others have in advance, and that differ in case alone.
TEST_F(Repairs, RenamingGivesTheKeysOfThePlainRule) {
    load();
    Texts names = {"a/#2", "A", "a", "a/#2", "a/#2/#2", longKey.substr(0, 56) + "/#3"};
    for (int i = 0; i < 130; ++i)
        for (const std::string& key : {longKey, longKey.substr(0, 58), longKey.substr(0, 56) + "ZZZZ",
                                       longKey.substr(0, 55) + "2", std::string("KKKK")})
            names.push_back(i % 3 == 0 ? small(key) : key);
    const TSXdatafile& made = newFile(names);
    database->analyse();
    std::set<std::string> taken;
    for (const std::string& name : names)
        taken.insert(small(name));
    Texts expected = names;
    for (int i = 1; i <= database->keytotal; ++i) {
        const TSXkeyentry& entry = *database->keyarray[static_cast<std::size_t>(i)];
        for (int n = 2; n <= entry.occurrences(0); ++n)
            expected[static_cast<std::size_t>(entry.occurrence(0, n).record) - 1] = freeKey(taken, entry.key);
    }
    database->renameduplicates(0);
    EXPECT_EQ(keysOf(made), expected);
}

// A search from 2 on for each of them would not end in the time that a test has.
TEST_F(Repairs, ManyDuplicatesAndLongKeysThatDifferBehindTheCutAreRenamedInOnePass) {
    logEnabled = 0;
    load();
    for (int i = 0; i < 150; ++i) {
        Texts keys(1000, "many");
        for (int r = 0; i >= 100 && r < 1000; ++r)
            keys[static_cast<std::size_t>(r)] =
                std::string(56, 's') + std::to_string(1000 + (i * 1000 + r) % 5000);
        newFile(keys);
    }
    database->analyse();
    database->renameduplicates(0);
    EXPECT_EQ(file(0, 100).keys[1000], "many/#100000");
    database->analyse();
    EXPECT_EQ(problems(), Texts());
    EXPECT_EQ(database->keytotal, 150000);
}

TEST_F(Repairs, OrphansWithoutRoomStayAProblem) {
    for (int i = 1; i <= 2999; ++i)
        put(0, "f" + std::to_string(i), "");
    Texts orphans;
    for (int i = 0; i < 101; ++i)
        orphans.push_back("o" + std::to_string(1000 + i));
    put(1, "A", dataFile(1, "G", orphans));
    load();
    database->adddatabaseentries();
    EXPECT_EQ(database->lists[0]->count, 3000);
    EXPECT_EQ(file(0, 3000).keycount, 100);
    database->analyse();
    EXPECT_EQ(problems().back(), "4/0 ");
    EXPECT_EQ(database->visiblecount, 1);
}

TEST_F(Repairs, EmptyAndCorruptFilesGoFromListAndDisk) {
    for (const char* name : {"A", "B", "E"})
        put(1, name, counted("GEL-DEF-v1.0"));
    put(1, "C", dataFile(1, "G", {"k"}));
    for (const char* name : {"fprint/D.DEF", "fprint/F.DEF", "seq/x.CNF"})
        put(name, "corrupt");
    load();
    for (const int fileclass : {-1, 6, 2})
        database->removeemptyfiles(fileclass);
    failAt(DiskOperation::remove, 2);
    database->removeemptyfiles(1);
    EXPECT_EQ(listTree(root / "fprint"), (Texts{"B.DEF", "C.DEF", "D.DEF", "F.DEF"})) << "one was refused";
    EXPECT_EQ(database->lists[1]->count, 3);
    for (const auto& [fileclass, position] : {std::pair(1, 0), {1, 4}, {-1, 1}, {6, 1}, {0, 1}})
        EXPECT_EQ(database->deletecorruptfile(fileclass, position), 0);
    EXPECT_EQ(reports, Texts());
    database->analyse();
    EXPECT_EQ(problems(), (Texts{"7/0 ROOT/seq/x.CNF", "6/1 D", "6/1 F", "4/0 "}));

    failAt(DiskOperation::remove, 1);
    EXPECT_EQ(database->getproblem(2)->solve(1), 0);
    EXPECT_EQ(database->lists[1]->count, 3);
    EXPECT_EQ(database->getproblem(2)->solve(1) + database->getproblem(1)->solve(1), 2);
    EXPECT_STREQ(file(1, 2).name, "F") << "later files move down";
    EXPECT_EQ(database->deletefile((root / "seq/x.CNF").c_str()), 0);
    EXPECT_EQ(database->deletefile((root / "seq").c_str()), 0);
    EXPECT_EQ(reports, (Texts{"Error 48: Unable to remove the file 'ROOT/fprint/D.DEF'",
                              "Error 48: Unable to remove the file 'ROOT/seq/x.CNF'",
                              "Error 48: Unable to remove the file 'ROOT/seq'"}));
    database->analyse();
    EXPECT_EQ(problems(), (Texts{"6/1 F", "4/0 "}));
    EXPECT_EQ(database->ismodified(), 0);
}

TEST_F(Repairs, ChangeKeyRefusesAsksOrMoves) {
    put(0, "A", dataFile(0, "", {"a", "b", "c"}));
    put(1, "A", dataFile(1, "G", {"a", "a", "b"}));
    load();
    TSXkeyentry &a = database->findoraddkey("a"), &b = database->findoraddkey("b");
    const struct {
        int type, n, answer;
        std::string text;
        int result;
        std::string report;
    } rows[] = {
        {0, 1, IDYES, "A", 0, ""},
        {0, 1, IDYES, std::string(61, 'x'), -1,
         "Error 48: The new key is too long: a key has at most 60 bytes. Nothing was changed"},
        {0, 2, IDYES, "new", -1, ""},
        {2, 1, IDYES, "new", -1, ""},
        {0, 1, IDNO, "B", -1, "Warning 52: This database entry exists already. Continue?"},
        {1, 1, IDCANCEL, "b", -1, "Warning 52: This experiment exists already. Continue?"},
    };
    for (const auto& row : rows) {
        answer = row.answer;
        reports.clear();
        EXPECT_EQ(database->changekey(a, row.type, row.n, row.text.c_str()), row.result) << row.text;
        EXPECT_EQ(reports, row.report.empty() ? Texts() : Texts{row.report});
    }
    EXPECT_EQ(database->ismodified(), 0);
    EXPECT_EQ(database->keytotal, 3) << "a refusal adds no key";

    answer = IDYES;
    EXPECT_EQ(database->changekey(a, 1, 1, "B"), 1);
    EXPECT_EQ(keysOf(file(1, 1)), (Texts{"B", "a", "b"}));
    EXPECT_EQ(a.occurrences(1) * 10 + b.occurrences(1), 12);
    EXPECT_EQ(b.occurrence(1, 2).record, 1);
    reports.clear();
    EXPECT_EQ(database->changekey(a, 1, 1, "c"), 1);
    EXPECT_EQ(reports, Texts()) << "in use in another type alone";
}

TEST_F(Repairs, EachSolutionEndsItsProblem) {
    put(0, "A", dataFile(0, "", {"d", "d", "", ""}));
    put(0, "B", counted("TX-DBS-v1.0"));
    put(1, "A", dataFile(1, "G", {"o", "o"}));
    put(2, "A", "corrupt");
    put("x.CMP", "corrupt");
    std::filesystem::remove(root / "images");
    load();
    const Texts before = problems();
    EXPECT_EQ(before, (Texts{"7/0 ROOT/./x.CMP", "5/1 ROOT\\images", "6/2 A", "1/0 ", "2/0 ", "3/0 ", "2/1 ",
                             "4/0 "}));
    for (int left = database->problemcount; left > 0; --left) {
        EXPECT_EQ(database->getproblem(1)->solve(database->getproblem(1)->solutioncount()), 1);
        database->analyse();
        EXPECT_EQ(database->problemcount, left - 1);
    }
    load(); // without a save the key changes are lost, and nothing else
    EXPECT_EQ(problems(), Texts(before.begin() + 4, before.end()));
}
