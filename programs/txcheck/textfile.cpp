#include "textfile.h"

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

std::string TextFile::open(const std::string& path, const std::vector<std::string>& databases) {
    name = path;
    for (const std::string& database : databases)
        if (leadsInto(path, database))
            return path +
                   ": The file is not written, since it would stand in the database. Give another place";
    if (stream.open(path.c_str(), OpenMode::write))
        return {};
    if (GetLastError() == ERROR_ALREADY_EXISTS)
        return path + ": The file is not written, since it has a second name, which may be one of the data. "
                      "Give another place";
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
    const std::uint32_t reason = text ? 0 : GetLastError();
    if (stream.close() && reason == 0)
        return {};
    if (reason != 0)
        SetLastError(reason);
    return failure(name, "The file can't be written");
}
