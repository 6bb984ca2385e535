#include "reporting/log.h"

#include <string>

#include "platform/system/bytestream.h"
#include "platform/system/messagebox.h"
#include "reporting/report.h"

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

bool writeText(const std::string& text, OpenMode mode) {
    ByteStream stream;
    if (!stream.open(logPath, mode))
        return false;
    const bool written = stream.write(text.data(), text.size()) == text.size();
    return stream.close() && written;
}

} // namespace

int startLog(int enabled, const char* directory) {
    logEnabled = enabled;
    if (logEnabled != 1)
        return 1;
    logPath.format("%s\\TXLOG.TXT", directory);
    if (writeText(head, OpenMode::write))
        return 1;
    logEnabled = 0;
    report((std::string("Could not create log file in ") + directory).c_str(), "Error", MB_OK | MB_ICONHAND);
    return 0;
}

void endLog() {
    if (logEnabled == 1)
        writeText(trailer, OpenMode::append);
}

void logLine(const char* text) {
    if (logEnabled == 1)
        writeText(std::string(text) + '\n', OpenMode::append);
}

void logLocalError(const char* text) {
    logLine(Text<400>().format("Local error: %s", text));
}
