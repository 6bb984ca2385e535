// A directory of its own for a test, and the handling of whole files with the standard library alone, so that
// a test does not lean on the code that it tests.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// The child of a death test leaves by exit, without the destructors of its fixture: what it has made goes
// here.
struct Leftovers {
    ~Leftovers() {
        std::error_code ignored;
        for (const std::string& directory : directories)
            if (getpid() == maker) // and no copy of it
                std::filesystem::remove_all(directory, ignored);
    }
    std::set<std::string> directories;
    const pid_t maker = getpid();
};
inline Leftovers leftovers;

// Made empty, and removed with all that is in it at the end.
class TempDir {
public:
    TempDir() {
        std::string name = (std::filesystem::temp_directory_path() / "test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary directory");
        directory_ = name;
        leftovers.directories.insert(name);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir() {
        std::error_code ignored;
        for (const auto& open : std::filesystem::directory_iterator("/proc/self/fd"))
            if (std::filesystem::read_symlink(open, ignored).string().starts_with(directory_))
                std::abort(); // what a test opened is closed again
        std::filesystem::remove_all(directory_, ignored);
        leftovers.directories.erase(directory_);
    }

    const std::string& path() const { return directory_; }
    // The path of an entry in the directory.
    std::string operator/(std::string_view name) const { return directory_ + "/" + std::string(name); }

private:
    std::string directory_;
};

// Makes a file with this content, or replaces its content; the directory must exist.
inline void writeFile(const std::string& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush())
        throw std::runtime_error("can't write " + path);
}

// The whole content of a file that must exist.
inline std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("can't read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The paths below a directory relative to it, ordered by their bytes, a directory's with a separator behind
// it.
inline std::vector<std::string> listTree(const std::string& directory) {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        const std::string path = entry.path().lexically_relative(directory).string();
        const bool isDirectory = !entry.is_symlink() && entry.is_directory();
        paths.push_back(isDirectory ? path + "/" : path);
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}
