#include "textfile.h"

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/path.h"

namespace {

std::string failure(const std::string& path, const char* what) {
    return path + ": " + what + ": " + errorText(GetLastError());
}

} // namespace

std::string readTextFile(const std::string& path, std::string& content) {
    constexpr std::size_t piece = 65536;
    ByteStream stream;
    if (!stream.open(path.c_str(), OpenMode::read))
        return failure(path, "The file can't be opened");
    std::size_t count = 0;
    do {
        content.resize(content.size() + piece);
        count = stream.read(content.data() + content.size() - piece, piece);
        content.resize(content.size() - piece + count);
    } while (count > 0);
    SetLastError(stream.readFailure());
    return stream.readFailure() == 0 ? std::string() : failure(path, "The file can't be read");
}

std::string writeTextFile(const std::string& path, std::string_view content, const char* databaseDirectory) {
    if (leadsInto(path, databaseDirectory))
        return path + ": The file is not written, since it would stand in the database. Give another place";
    ByteStream stream;
    const bool opened = stream.open(path.c_str(), OpenMode::write);
    if (!opened && GetLastError() == ERROR_ALREADY_EXISTS)
        return path + ": The file is not written, since it has a second name, which may be one of the data. "
                      "Give another place";
    if (!opened)
        return failure(path, "The file can't be made");
    const bool written = stream.write(content.data(), content.size()) == content.size();
    return stream.close() && written ? std::string() : failure(path, "The file can't be written");
}
