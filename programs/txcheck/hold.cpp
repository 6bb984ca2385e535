#include "hold.h"

#include <algorithm>

#include "model/database.h"
#include "model/marker.h"
#include "platform/system/errors.h"
#include "platform/system/filesearch.h"
#include "platform/system/path.h"
#include "told.h"

namespace {

// A text of several lines, as a message box shows it.
std::string inOneLine(std::string text) {
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at)) {
        const std::size_t end = std::min(text.find_first_not_of('\n', at), text.size());
        text.replace(at, end - at, end - at == 1 ? ". " : " ");
    }
    return text;
}

// What lies below a directory that can't be read is unknown as a whole. The number of the reason, 0 for none.
std::uint32_t unreadable(const std::string& directory) {
    WIN32_FIND_DATAA match;
    std::vector<std::string> passedOver;
    FindHandle search = FindFirstFileA((directory + "/*").c_str(), match, passedOver);
    FindClose(search);
    const std::uint32_t number = search == nullptr ? GetLastError() : ERROR_SUCCESS;
    return number == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : number;
}

// Why no database can be checked under that path; empty where one can.
std::string obstacle(const std::string& directory) {
    constexpr std::size_t longest = decltype(TSXdatabase::directory)::capacity() - 1;
    if (directory.empty())
        return "The path of the database directory is empty";
    if (directory.size() > longest)
        return "The path of the database directory is too long: it has at most " + std::to_string(longest) +
               " bytes";
    if (const std::uint32_t number = unreadable(directory); number != ERROR_SUCCESS)
        return directory + ": Unable to read the database directory (Error code " + std::to_string(number) +
               ": " + errorText(number) + "). Give one that is there and that you may read";
    return isDatabase(directory.c_str()) ? std::string() : noDatabaseText(directory.c_str());
}

} // namespace

Hold::~Hold() {
    if (marker != INVALID_HANDLE_VALUE)
        CloseHandle(marker);
}

bool Hold::take(const std::string& directory, Marker wish) {
    if (const std::string text = obstacle(directory); !text.empty()) {
        tell(text);
        return false;
    }
    const std::string path = directory + "/" + markerName;
    if (wish == Marker::left || (wish == Marker::present && !pathExists(path)))
        return true;
    marker = openMarker(directory.c_str());
    if (marker != INVALID_HANDLE_VALUE)
        return true;
    const std::string advice = lockAdvice(directory.c_str());
    tell(path + ": " + inOneLine(lockFailureText() + advice));
    return false;
}
