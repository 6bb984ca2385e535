// A small tree with everything that an entry can have, random groups of changes of it, and its state with all
// attributes, taken with the system's calls alone.
#pragma once

#include <map>
#include <random>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/system/bytestream.h"
#include "platform/system/directory.h"
#include "platform/system/faults.h"
#include "platform/system/plainfile.h"
#include "reporting/report.h"
#include "tempdir.h"
#include "undo/journal.h"
#include "undo/keeper.h"
#include "undo/restore.h"
#include "undo/undolist.h"

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;
using Snapshot = std::map<std::string, std::string>;

inline std::string textOf(const struct stat& s) {
    const auto time = [](const timespec& t) {
        return std::to_string(t.tv_sec) + "." + std::to_string(t.tv_nsec) + " ";
    };
    return std::to_string(s.st_mode) + " " + std::to_string(s.st_uid) + ":" + std::to_string(s.st_gid) + " " +
           std::to_string(s.st_nlink) + " " + time(s.st_mtim);
}

inline Snapshot snapshot(const std::string& root) {
    Snapshot found;
    std::vector<std::string> names = listTree(root);
    names.push_back("");
    for (const std::string& name : names) {
        const std::string path = root + "/" + name;
        struct stat state = {};
        lstat(path.c_str(), &state);
        char attribute[64] = {};
        lgetxattr(path.c_str(), "user.origin", attribute, sizeof attribute);
        found[name] = textOf(state) + attribute + "|" +
                      (S_ISREG(state.st_mode)   ? readFile(path)
                       : S_ISLNK(state.st_mode) ? fs::read_symlink(path).string()
                                                : "");
    }
    return found;
}

// The names whose state differs.
inline std::vector<std::string> differences(const Snapshot& a, const Snapshot& b) {
    Texts names;
    for (const auto* one : {&a, &b})
        for (const auto& [name, text] : *one)
            if (const auto other = (one == &a ? b : a).find(name);
                other == (one == &a ? b : a).end() || other->second != text)
                names.push_back(name + ": " + text.substr(0, text.find('|')));
    return names;
}

inline std::string fieldOf(const std::string& key) {
    std::string bytes(69, '\0');
    bytes[0] = static_cast<char>(key.size());
    bytes[4] = 61;
    return bytes.replace(8, key.size(), key);
}

class UndoTest : public testing::Test {
protected:
    UndoTest() {
        setenv("XDG_STATE_HOME", state.path().c_str(), 1);
        setReport([this](const char* text, const char*, std::uint32_t) {
            reports.emplace_back(text);
            return answer;
        });
        for (const char* name : {"DBASE", "seq", "seq/deep"})
            fs::create_directory(root / name);
        for (int i = 0; i < 6; ++i)
            plain("DBASE/F" + std::to_string(i) + ".DBS", i);
        plain("seq/twice.CNF", 3);
        fs::create_hard_link(root / "seq/twice.CNF", root / "seq/deep/again.CNF");
        fs::create_symlink("../DBASE/F0.DBS", root / "seq/link.DEF");
        fs::create_symlink("nowhere", root / "seq/dangling.DEF");
        for (const char* name : {"DBASE", "seq/deep", "seq", ""})
            age(name);
    }
    ~UndoTest() override {
        diskFaultHook = nullptr;
        setReport(nullptr);
    }

    void plain(const std::string& name, int i) {
        std::string content = "head";
        for (int r = 0; r < i + 2; ++r)
            content += fieldOf("key " + std::to_string(i * 100 + r));
        content.resize(content.size() - (i == 2 ? 40 : 0)); // the file ends in the padding of its last field
        writeFile(root / name, content);
        setxattr((root / name).c_str(), "user.origin", name.c_str(), name.size(), 0);
        chmod((root / name).c_str(), i % 2 == 0 ? 0640 : 0604);
        if (geteuid() == 0 && i == 1) {
            EXPECT_EQ(chown((root / name).c_str(), 12, 34), 0);
        }
        age(name);
    }
    void age(const std::string& name) {
        const timespec times[] = {{1700000000, 123456789}, {1600000000 + ++aged, 987654321}};
        utimensat(AT_FDCWD, (root / name).c_str(), times, 0);
    }
    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    }

    void addKeys(std::vector<Change>& group, const std::string& name) {
        if (fs::is_symlink(root / name) || fs::path(name).extension() == ".CNF")
            return; // a second name of a file, or one without keys
        const std::string content = readFile(root / name);
        for (std::size_t at = 4, r = 1; at < content.size(); at += 69, ++r)
            if (pick(2) == 0)
                group.push_back(
                    {Change::key, name, static_cast<std::int32_t>(r), static_cast<std::int64_t>(at), "",
                     "new " + std::to_string(++made) + std::string(pick(40), 'x'), content.substr(at, 69)});
    }

    // As the model does it; false where the disk did not do one.
    bool make(const Change& change) const {
        const std::string path = root / change.file;
        ByteStream file;
        if (change.kind == Change::deletion)
            return removeFile(path.c_str());
        if (change.kind == Change::making && change.file[0] == 'n')
            return CreateDirectoryA(path.c_str()) != 0;
        const std::string bytes = fieldOf(change.newkey);
        return file.open(path.c_str(), change.kind == Change::making ? OpenMode::create : OpenMode::update) &&
               file.seek(change.offset) && file.write(bytes.data(), 69) == 69 && file.close();
    }
    bool change(UndoKeeper& keeper, const std::vector<Change>& group) const {
        if (!keeper.before(group))
            return false;
        for (const Change& one : group)
            make(one);
        keeper.after();
        return true;
    }
    RestoreResult bringBack(const std::string& undoFile, bool yes = false) const {
        return restore({undoFile, root.path(), yes, true, ""});
    }
    std::vector<std::string> undoFiles() const {
        std::vector<std::string> paths;
        for (const UndoListEntry& entry : listUndoFiles())
            paths.push_back(entry.path);
        return paths;
    }

    TempDir root, state;
    std::mt19937 random{7};
    std::vector<std::string> reports;
    int answer = 0, aged = 0, made = 0;
};
