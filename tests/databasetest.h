// A database in a temporary directory with its log, its reports and its disk faults.
#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "model/database.h"
#include "model/datafile.h"
#include "model/fileclass.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/messagebox.h"
#include "reporting/log.h"
#include "reporting/notify.h"
#include "tempdir.h"

using Texts = std::vector<std::string>;

template <class Number> std::string integer(Number number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<char>(static_cast<std::uint32_t>(number) >> shift));
    return bytes;
}

inline std::string counted(const std::string& text) {
    return integer(text.size()) + text;
}

inline std::string field(std::string_view key) {
    const std::string text(key);
    return integer(text.size()) + integer(61) + text + std::string(61 - text.size(), '\0');
}

inline void addChunk(std::string& file, const char* tag, const std::string& body) {
    file += std::string("TG") + tag + integer(file.size() + 9 + body.size()) + body;
}

inline std::string dataFile(int fileclass, const std::string& type, const Texts& keys) {
    const FileClass& format = fileclasses[fileclass];
    std::string file = counted(format.header), records = integer(keys.size());
    addChunk(file, fileclass == 0 ? "FLD" : format.typetag, fileclass == 0 ? integer(0) : field(type));
    for (const std::string& key : keys)
        records += field(key) + (format.recordtypes ? field(type) : "") +
                   std::string(4 * static_cast<std::size_t>(format.recordintegers), 'i');
    addChunk(file, format.recordtag, records);
    return file;
}

class DatabaseTest : public testing::Test {
protected:
    DatabaseTest() {
        for (const char* name :
             {"DBASE", "fprint", "images", "char", "seq", "matrix", "gel2d", "Library", "bundles"})
            std::filesystem::create_directory(root / name);
        setenv("XDG_STATE_HOME", home.path().c_str(), 1);
        setNotifier([this](const char* text, const char* title, std::uint32_t flags) {
            reports.push_back(std::string(title) + " " + std::to_string(flags) + ": " + text);
            return answer;
        });
    }
    ~DatabaseTest() override {
        logEnabled = 0;
        setNotifier(nullptr);
    }

    void put(const std::string& name, const std::string& bytes) { writeFile(root / name, bytes); }
    void put(int fileclass, const std::string& name, const std::string& bytes) {
        put(std::string(fileclasses[fileclass].directory) + "/" + name + "." +
                fileclasses[fileclass].extension,
            bytes);
    }
    TSXdatabase& load() {
        database = std::make_unique<TSXdatabase>("");
        database->load(root.path().c_str());
        return *database;
    }
    // A file in memory alone, whose records are of that type.
    TSXdatafile& newFile(const Texts& keys, int type = 0) {
        TSXfilelist& list = *database->lists[0];
        TSXdatafile& made = *list.files[static_cast<std::size_t>(list.newfile())];
        made.typeid_ = type;
        for (const std::string& key : keys)
            made.addentry(key.c_str());
        return made;
    }
    static Texts keysOf(const TSXdatafile& file) { return {file.keys.begin() + 1, file.keys.end()}; }

    TempDir root, home;
    std::unique_ptr<TSXdatabase> database;
    Texts reports; // "title flags: text"
    int answer = IDOK;
};
