#include "undo/undotest.h"

namespace {

int opsLeft = 0;

bool endAtOperation(DiskOperation) {
    if (--opsLeft == 0)
        _exit(1);
    return false;
}

bool failAtOperation(DiskOperation) {
    return --opsLeft == 0;
}

// Runs it in a process of its own, which ends at the n-th operation of the disk. False once it comes to its
// end.
template <class Run> bool endsAt(int n, Run run) {
    const pid_t child = fork();
    if (child == 0) {
        opsLeft = n;
        diskFaultHook = endAtOperation;
        run();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status) == 1;
}

} // namespace

struct Interrupted : UndoTest {
    // One with each kind of change, some of them in two fields of a file.
    std::vector<Change> mixedGroup() {
        std::vector<Change> group;
        for (const char* name : {"DBASE/F2.DBS", "DBASE/F5.DBS"})
            for (int i = 0; group.size() < 2 && i < 9; ++i)
                addKeys(group, name);
        for (const char* name : {"DBASE/F0.DBS", "seq/dangling.DEF", "seq/deep/again.CNF"})
            group.push_back({Change::deletion, name, 0, 0, "", "", ""});
        for (const char* name : {"DBASE/N1", "new2"})
            group.push_back({Change::making, name, 0, 0, "", "", ""});
        return group;
    }
    // Every field is old or new as a whole, and nothing else has changed.
    void expectOldOrNew(const std::vector<Change>& group,
                        const std::map<std::string, std::string>& contents) {
        for (const auto& [name, content] : contents) {
            std::string now = fs::exists(root / name) ? readFile(root / name) : content;
            for (const Change& change : group)
                if (change.file == name && change.kind == Change::key) {
                    const auto at = static_cast<std::size_t>(change.offset);
                    const std::string field = now.substr(at, 69);
                    EXPECT_TRUE(field == change.fieldbefore || field == fieldOf(change.newkey)) << name << at;
                    now.replace(at, 69, change.fieldbefore);
                }
            EXPECT_EQ(now, content) << name;
        }
    }
    // As a write leaves it that stopped at any byte, or whose sectors came in any order.
    void tear(const std::vector<Change>& group) {
        for (const Change& change : group)
            if (change.kind == Change::key && pick(2) == 0) {
                std::string content = readFile(root / change.file);
                const auto at = static_cast<std::size_t>(change.offset);
                const std::size_t split = pick(70);
                std::string before = change.fieldbefore, after = fieldOf(change.newkey);
                if (pick(2) == 0 && before.size() == 69)
                    std::swap(before, after);
                const std::string torn =
                    after.substr(0, split) + (split < before.size() ? before.substr(split) : "");
                writeFile(root / change.file, content.replace(at, 69, torn));
            }
    }
    std::map<std::string, std::string> contents() const {
        std::map<std::string, std::string> found;
        for (const char* name : {"DBASE/F1.DBS", "DBASE/F2.DBS", "DBASE/F3.DBS", "DBASE/F5.DBS"})
            found[name] = readFile(root / name);
        return found;
    }
};

// The process ends at each operation of a run in turn, and fields may be torn; the next run finishes it, and
// it can be taken back, by a restore that is ended at each of its operations too.
TEST_F(Interrupted, RunsAreFinishedAndTakenBack) {
    const std::vector<Change> group = mixedGroup();
    const Snapshot before = snapshot(root.path());
    const auto old = contents();
    int finished = 0;
    bool ended = true;
    for (int n = 1; ended; ++n) {
        SCOPED_TRACE(n);
        ended = endsAt(n, [&] {
            UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse);
            change(keeper, group);
        });
        if (isInterrupted(root.path())) {
            tear(group);
            opsLeft = static_cast<int>(pick(60)) + 1;
            diskFaultHook = failAtOperation;
            const bool done = finishInterrupted(root.path()).complete;
            diskFaultHook = nullptr;
            EXPECT_FALSE(done && isInterrupted(root.path()));
            if (isInterrupted(root.path())) {
                const FinishedWork work = finishInterrupted(root.path());
                EXPECT_TRUE(work.complete && !work.texts.empty());
            }
            ++finished;
        }
        EXPECT_FALSE(isInterrupted(root.path()));
        expectOldOrNew(group, old);
        const Texts files = undoFiles();
        if (!files.empty()) {
            for (int i = 0;
                 i < 4 && endsAt(static_cast<int>(pick(150)) + 1, [&] { bringBack(files.back()); }); ++i)
                EXPECT_TRUE(finishInterrupted(root.path()).complete);
            EXPECT_TRUE(bringBack(files.back()).complete());
        }
        EXPECT_EQ(differences(snapshot(root.path()), before), Texts());
        for (const std::string& file : undoFiles())
            fs::remove(file);
        if (HasFailure())
            break;
    }
    EXPECT_GT(finished, 10);
}

// Whichever operation fails: nothing is changed without its undo file, and what is called restored is.
TEST_F(Interrupted, FaultsLeaveNoChangeWithoutUndoAndNoFalseSuccess) {
    const std::vector<Change> group = mixedGroup();
    const Snapshot before = snapshot(root.path());
    for (int n = 1;; ++n) {
        SCOPED_TRACE(n);
        UndoKeeper keeper(root.path(), UndoKeeper::WithoutPlace::refuse);
        opsLeft = n;
        diskFaultHook = failAtOperation;
        const bool allowed = keeper.before(group);
        const bool faulty = opsLeft <= 0;
        diskFaultHook = nullptr;
        EXPECT_EQ(allowed, undoFiles().size() == 1);
        EXPECT_NE(allowed, !reports.empty());
        EXPECT_EQ(differences(snapshot(root.path()), before), Texts());
        if (allowed) {
            for (const Change& one : group)
                make(one);
            opsLeft = n;
            diskFaultHook = failAtOperation;
            keeper.after();
            FinishedWork work = finishInterrupted(root.path());
            diskFaultHook = nullptr;
            if (!work.complete)
                work = finishInterrupted(root.path());
            EXPECT_TRUE(work.complete);
            opsLeft = n;
            diskFaultHook = failAtOperation;
            const RestoreResult result = bringBack(keeper.path());
            diskFaultHook = nullptr;
            if (result.complete()) {
                EXPECT_EQ(differences(snapshot(root.path()), before), Texts());
            }
            EXPECT_TRUE(finishInterrupted(root.path()).complete);
            EXPECT_TRUE(bringBack(keeper.path()).complete());
            EXPECT_EQ(differences(snapshot(root.path()), before), Texts());
        }
        for (const std::string& file : undoFiles())
            fs::remove(file);
        reports.clear();
        if (!faulty && opsLeft > 0)
            break;
        if (HasFailure())
            break;
    }
}
