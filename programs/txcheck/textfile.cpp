#include "textfile.h"

#include "platform/system/errors.h"

namespace {

std::string failure(const std::string& path, const char* what) {
    return path + ": " + what + ": " + errorText(GetLastError());
}

std::string linkFailure(const std::string& path, const char* what) {
    return path + ": " + what + ", since it is a link. Give the file itself";
}

bool standsIn(const Tree& folder, const std::string& directory) {
    Tree database;
    std::string inner, outer;
    return !database.open(directory) && !folder.fullPath(inner) && !database.fullPath(outer) &&
           (inner + "/").starts_with(outer + "/");
}

} // namespace

std::string readTextFile(const std::string& path, std::string& content) {
    constexpr std::int64_t longest = std::int64_t{64} << 20;
    Tree folder;
    File file;
    std::string name;
    Failure reason = folder.openDirectoryOf(path, name);
    if (!reason)
        reason = folder.openToRead(name, file, Links::unfollowed);
    if (!succeeded(reason))
        return reason.number == ERROR_CANT_RESOLVE_FILENAME ? linkFailure(path, "The file is not read")
                                                            : failure(path, "The file can't be opened");
    if (file.opened().size > longest)
        return path + ": The file is not read, since it has more than 64 MiB";
    reason = file.read(0, static_cast<std::size_t>(file.opened().size), content);
    return succeeded(reason) ? std::string() : failure(path, "The file can't be read");
}

std::string TextFile::open(const std::string& path, const std::vector<std::string>& databases) {
    name = path;
    Tree folder;
    std::string last;
    if (!succeeded(folder.openDirectoryOf(path, last)))
        return failure(path, "The file can't be made");
    for (const std::string& directory : databases)
        if (standsIn(folder, directory))
            return path +
                   ": The file is not written, since it would stand in the database. Give another place";
    File old;
    std::string head;
    if (!folder.openToRead(last, old, Links::unfollowed) && !old.read(0, 8, head) && head == "TX-UNDO-")
        return path + ": The file is not written, since an undo file stands there. Give another place";
    if (stream.open(folder, last, OpenMode::write, Links::unfollowed))
        return {};
    if (GetLastError() == ERROR_ALREADY_EXISTS)
        return path + ": The file is not written, since it has a second name, which may be one of the data. "
                      "Give another place";
    if (GetLastError() == ERROR_CANT_RESOLVE_FILENAME)
        return linkFailure(path, "The file is not written");
    return failure(path, "The file can't be made");
}

TextFile::int_type TextFile::overflow(int_type byte) {
    const char one = traits_type::to_char_type(byte);
    return xsputn(&one, 1) == 1 ? byte : traits_type::eof();
}

std::streamsize TextFile::xsputn(const char* bytes, std::streamsize count) {
    return static_cast<std::streamsize>(stream.write(bytes, static_cast<std::size_t>(count)));
}

std::string TextFile::close() {
    return stream.close() ? std::string() : failure(name, "The file can't be written");
}
