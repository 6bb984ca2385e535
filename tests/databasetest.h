// The bytes of the file formats, made without the code that is tested, and a database in a temporary
// directory with its log, its reports and its disk faults.
#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "model/database.h"
#include "model/datafile.h"
#include "model/exptype.h"
#include "model/keyentry.h"
#include "model/problem.h"
#include "platform/system/faults.h"
#include "platform/system/messagebox.h"
#include "reporting/log.h"
#include "reporting/report.h"
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

inline std::string field(const std::string& text) {
    return integer(text.size()) + integer(61) + text + std::string(61 - text.size(), '\0');
}

template <class End> std::string frame(const char* tag, End end) {
    return std::string("TG") + tag + integer(end);
}

inline void addChunk(std::string& file, const char* tag, const std::string& body) {
    file += frame(tag, file.size() + 9 + body.size()) + body;
}

struct Format {
    const char *directory, *extension, *header, *typetag, *recordtag;
};
inline const Format formats[] = {
    {"DBASE", "DBS", "TX-DBS-v1.0", "FLD", "ENT"},      {"fprint", "DEF", "GEL-DEF-v1.0", "GTP", "eEN"},
    {"char", "DEF", "PHEN-DEF-v1.0", "TPE", "eEN"},     {"seq", "DEF", "SEQ-DEF-v1.0", "TPE", "eEN"},
    {"matrix", "DEF", "PAIRSIMDEF-v1.0", "TPE", "eEN"}, {"gel2d", "DEF", "GEL2D-DEF-v1.0", nullptr, "KEY"},
};

inline std::string record(int fileclass, const std::string& type, const std::string& key) {
    const std::string integers = fileclass == 0 ? "" : std::string(fileclass == 4 ? 12 : 4, 'i');
    return field(key) + (fileclass == 1 || fileclass == 5 ? field(type) : "") + integers;
}

// A sound file with a foreign chunk before its records; one of class 5 has one key.
inline std::string dataFile(int fileclass, const std::string& type, const Texts& keys) {
    std::string file = counted(formats[fileclass].header);
    if (fileclass != 5)
        addChunk(file, formats[fileclass].typetag, fileclass == 0 ? integer(0) : field(type));
    addChunk(file, "XYZ", "foreign");
    std::string records = fileclass == 5 ? "" : integer(keys.size());
    for (const std::string& key : keys)
        records += record(fileclass, type, key);
    addChunk(file, formats[fileclass].recordtag, records);
    return file;
}

class DatabaseTest : public testing::Test {
protected:
    DatabaseTest() {
        for (const char* name :
             {"DBASE", "fprint", "images", "char", "seq", "matrix", "gel2d", "Library", "bundles"})
            std::filesystem::create_directory(root / name);
        setReport([this](const char* text, const char* title, std::uint32_t flags) {
            reports.push_back(std::string(title) + " " + std::to_string(flags) + ": " + shortened(text));
            return answer;
        });
        startLog(1, home.path().c_str());
        takeLog();
    }
    ~DatabaseTest() override {
        diskFaultHook = nullptr;
        logEnabled = 0;
        setReport(nullptr);
    }

    void put(const std::string& name, const std::string& bytes) { writeFile(root / name, bytes); }
    void put(int fileclass, const std::string& name, const std::string& bytes) {
        put(std::string(formats[fileclass].directory) + "/" + name + "." + formats[fileclass].extension,
            bytes);
    }
    TSXdatabase& load() {
        database = std::make_unique<TSXdatabase>("");
        database->load(root.path().c_str());
        return *database;
    }
    TSXdatafile& file(int fileclass, int position) {
        return *database->lists[static_cast<std::size_t>(fileclass)]
                    ->files[static_cast<std::size_t>(position)];
    }
    // A file of the database in memory alone.
    TSXdatafile& newFile(const Texts& keys) {
        TSXdatafile& made = file(0, static_cast<TSXdbslist&>(*database->lists[0]).newfile());
        for (const std::string& key : keys)
            made.addentry(key.c_str());
        return made;
    }
    static Texts keysOf(const TSXdatafile& file) {
        return file.keycount == 0 ? Texts() : Texts(file.keys.begin() + 1, file.keys.end());
    }
    // "kind/sub-kind name" of each problem.
    Texts problems() const {
        Texts lines;
        for (int i = 1; i <= database->problemcount; ++i) {
            const TSXproblem& problem = *database->getproblem(i);
            lines.push_back(std::to_string(problem.kind) + "/" + std::to_string(problem.subkind) + " " +
                            shortened(problem.name.c_str()));
        }
        return lines;
    }
    // The log since the last call.
    std::string takeLog() {
        std::ifstream log(home / "TXLOG.TXT", std::ios::binary);
        log.seekg(logRead);
        const std::string text{std::istreambuf_iterator<char>(log), {}};
        logRead += static_cast<std::streamoff>(text.size());
        return shortened(text);
    }
    std::string shortened(std::string text) const {
        for (std::size_t at; (at = text.find(root.path())) != std::string::npos;)
            text.replace(at, root.path().size(), "ROOT");
        return text;
    }

    TempDir root, home;
    std::unique_ptr<TSXdatabase> database;
    Texts reports; // "title flags: text"
    int answer = IDOK;

private:
    std::streamoff logRead = 0;
};

inline DiskOperation faultyKind;
inline int faultyNumber = 0;

// The n-th operation of a kind from now on fails, and no other.
inline void failAt(DiskOperation kind, int number) {
    faultyKind = kind;
    faultyNumber = number;
    diskFaultHook = [](DiskOperation operation) { return operation == faultyKind && --faultyNumber == 0; };
}
