#include "anonymous.h"

#include <cstring>
#include <filesystem>
#include <map>
#include <vector>

#include "disguise.h"
#include "files/binfile.h"
#include "model/database.h"
#include "model/fileclass.h"
#include "platform/system/bytestream.h"
#include "platform/system/directory.h"
#include "platform/system/errors.h"
#include "platform/system/path.h"

namespace {

struct Piece {
    std::int64_t offset;
    std::string bytes;
    bool istext;
};

// By the name below the database's directory, as it is spelled on the disk.
using Pieces = std::map<std::string, std::vector<Piece>>;

class Watcher : public ReadWatcher {
public:
    explicit Watcher(const TSXdatabase& watched) : database(watched) { readwatcher = this; }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;
    ~Watcher() override { readwatcher = nullptr; }

    void opened(const char* path) override { current = &pieces[database.diskname(path)]; }
    void read(std::int64_t offset, std::string_view bytes, bool istext) override {
        if (current != nullptr && !bytes.empty())
            current->push_back({offset, std::string(bytes), istext});
    }

    Pieces pieces;

private:
    const TSXdatabase& database;
    std::vector<Piece>* current = nullptr;
};

std::string upToNul(const std::string& bytes) {
    return bytes.substr(0, bytes.find('\0'));
}

// The header that a kind of file begins with says nothing of the database.
bool isHeader(const Piece& piece) {
    const auto is = [&](const char* header) { return piece.bytes == header; };
    for (const FileClass& format : fileclasses)
        if (is(format.header) || is(format.sideheader))
            return true;
    return false;
}

bool isDisguised(const Piece& piece) {
    return piece.istext && !isHeader(piece);
}

class Copy {
public:
    Copy(std::string target, std::uint32_t seed)
        : to(std::move(target)), texts(false, seed), names(true, seed + 1) {}

    std::string make(const Pieces& files, const std::string& from) {
        for (const auto& [name, pieces] : files)
            learn(name, pieces);
        makeDirectories(from);
        for (const auto& [name, pieces] : files)
            if (failure.empty())
                write(from + '/' + name, disguisedName(name), pieces);
        return failure;
    }

private:
    void learn(const std::string& name, const std::vector<Piece>& pieces) {
        for (const Piece& piece : pieces)
            if (isDisguised(piece))
                texts.learn(upToNul(piece.bytes));
        const std::filesystem::path path(name);
        names.learn(path.stem().string());
        if (isLibrary(path))
            names.learn(path.parent_path().stem().string());
    }

    static bool isLibrary(const std::filesystem::path& path) {
        return path.parent_path().has_parent_path(); // Library/NAME.LIB/NAME.CMP
    }

    std::string disguisedStem(const std::filesystem::path& path) {
        return names.of(path.stem().string()) + path.extension().string();
    }

    std::string disguisedName(const std::string& name) {
        const std::filesystem::path path(name);
        const std::filesystem::path above = path.parent_path();
        std::filesystem::path directory = above;
        if (isLibrary(path))
            directory = above.parent_path() / disguisedStem(above);
        return (directory / disguisedStem(path)).string();
    }

    void makeDirectories(const std::string& from) {
        std::vector<const char*> known = treedirectories;
        known.push_back(fileclasses[fileclasscount - 1].directory);
        for (const char* name : known)
            if (canEnterDirectory((from + '/' + name).c_str()))
                std::filesystem::create_directories(
                    to / std::filesystem::path(resolvePath(from + '/' + name)).filename());
    }

    // What was read stands where it stood, and zeros in all other places.
    void write(const std::string& original, const std::string& name, const std::vector<Piece>& pieces) {
        std::error_code error;
        std::string content(std::filesystem::file_size(original, error), '\0');
        for (const Piece& piece : pieces) {
            std::string bytes = isDisguised(piece) ? texts.of(upToNul(piece.bytes)) : piece.bytes;
            bytes.resize(piece.bytes.size(), '\0');
            const auto offset = static_cast<std::size_t>(piece.offset);
            if (!error && offset + bytes.size() <= content.size())
                content.replace(offset, bytes.size(), bytes);
        }
        const std::string path = (to / name).string();
        std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
        ByteStream stream;
        const bool opened = stream.open(path.c_str(), OpenMode::write);
        if (!opened || stream.write(content.data(), content.size()) != content.size() || !stream.close())
            failure = path + ": The file can't be written: " + errorText(GetLastError());
    }

    std::filesystem::path to;
    Disguise texts;
    Disguise names;
    std::string failure;
};

// Why no copy can be made; empty where it can, and its directory is there then.
std::string obstacle(const std::string& from, const std::string& to) {
    if (!canEnterDirectory(from.c_str()))
        return from + ": The directory can't be entered";
    if (leadsInto(to, from))
        return to + ": The copy would stand in the database. Give another place";
    std::error_code error;
    std::filesystem::create_directories(to, error);
    if (error || !std::filesystem::is_empty(to, error) || error)
        return to + ": The directory can't be made, or is not empty";
    return {};
}

} // namespace

CopyResult copyAnonymously(const std::string& from, const std::string& to, std::uint32_t seed) {
    CopyResult result;
    result.failure = obstacle(from, to);
    if (!result.failure.empty())
        return result;
    TSXdatabase database("");
    Watcher watcher(database);
    database.load(from.c_str());
    result.files = static_cast<int>(watcher.pieces.size());
    result.unread = database.unreadcount();
    result.failure = Copy(to, seed).make(watcher.pieces, from);
    return result;
}
