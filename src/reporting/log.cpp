#include "reporting/log.h"

#include <cstring>
#include <memory>
#include <string>

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/messagebox.h"
#include "platform/system/tree.h"
#include "reporting/notify.h"

int logEnabled = 0;
Text<2000> logPath;

namespace {

constexpr const char* head = "\n"
                             "     **************************\n"
                             "     *         Log file       *\n"
                             "     **************************\n"
                             "\n"
                             "\n";
constexpr const char* trailer = "\n"
                                "\n"
                                "     ************************\n"
                                "     *  End of TX log file  *\n"
                                "     ************************\n";

int lostLines = 0;
std::uint32_t lossReason = ERROR_SUCCESS; // of the first

std::unique_ptr<Tree> logDirectory; // the log's directory
std::string name;                   // of the log in it, as on the disk

bool writeHead() {
    logDirectory = std::make_unique<Tree>();
    ByteStream stream;
    if (!succeeded(logDirectory->openDirectoryOf(logPath.c_str(), name)) ||
        !stream.open(*logDirectory, name, OpenMode::write, Links::unfollowed))
        return false;
    const std::size_t size = std::strlen(head);
    const bool written = stream.write(head, size) == size;
    return stream.close() && written;
}

void append(const std::string& text) {
    const Failure failure =
        logDirectory != nullptr ? logDirectory->append(name, text) : Failure{ERROR_PATH_NOT_FOUND};
    if (failure && lostLines++ == 0)
        lossReason = failure.number;
}

void tellLoss() {
    const std::string text = std::to_string(lostLines) + (lostLines == 1 ? " line is" : " lines are") +
                             " missing in the log '" + logPath.c_str() +
                             "' because it could not be written: " + errorText(lossReason);
    lostLines = 0;
    notify(text.c_str(), "Warning", MB_OK | MB_ICONEXCLAMATION);
}

} // namespace

bool startLog(int enabled, const char* directory) {
    logEnabled = enabled;
    logDirectory.reset();
    if (logEnabled != 1)
        return true;
    if (logPath.take(std::string(directory) + "\\TXLOG.TXT") && writeHead()) {
        name = logDirectory->spelled(logPath.view());
        return true;
    }
    logEnabled = 0;
    logDirectory.reset();
    notify((std::string("Could not create log file in ") + directory).c_str(), "Error", MB_OK | MB_ICONHAND);
    return false;
}

void endLog() {
    if (logEnabled != 1)
        return;
    append(trailer);
    logDirectory.reset();
    if (lostLines > 0)
        tellLoss();
}

int lostLogLines() {
    return lostLines;
}

void logLine(const char* text) {
    if (logEnabled == 1)
        append(std::string(text) + '\n');
}

void logLocalError(const char* text) {
    logLine(Text<400>().format("Local error: %s", text));
}
