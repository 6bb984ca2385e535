#include "platform/system/errors.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <iterator>

#include "platform/system/posix.h"

namespace {

struct ErrorText {
    std::uint32_t number;
    const char* text;
    std::initializer_list<int> systemErrors = {}; // that mean the same
};

const ErrorText errorTexts[] = {
    {ERROR_SUCCESS, "The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified.", {ENOENT}},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified.", {ENOTDIR}},
    {4, "The system cannot open the file.", {EMFILE, ENFILE}},
    {ERROR_ACCESS_DENIED, "Access is denied.", {EACCES, EPERM, EISDIR}},
    {8, "Not enough memory resources are available to process this command.", {ENOMEM}},
    {ERROR_INVALID_DATA, "The data is invalid."},
    {ERROR_WRITE_PROTECT, "The media is write protected.", {EROFS}},
    {ERROR_GEN_FAILURE, "A device attached to the system is not functioning."},
    // EAGAIN: the file is under another program's lease.
    {ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process.",
     {EAGAIN, EBUSY, ETXTBSY}},
    {ERROR_NOT_SUPPORTED, "The request is not supported.", {EOPNOTSUPP, ENOSYS, ENOLCK}},
    // ESTALE is what a file server says of a file that it has lost.
    {59,
     "An unexpected network error occurred.",
     {ESTALE, ENETDOWN, ENETUNREACH, EHOSTDOWN, EHOSTUNREACH, ECONNRESET, ENOTCONN}},
    {ERROR_DISK_FULL, "There is not enough space on the disk.", {ENOSPC, EDQUOT, EFBIG}},
    {121, "The semaphore timeout period has expired.", {ETIMEDOUT}},
    // EINVAL comes from file systems that forbid some characters.
    {123, "The filename, directory name, or volume label syntax is incorrect.", {EINVAL, EILSEQ}},
    {ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists.", {EEXIST}},
    {206, "The filename or extension is too long.", {ENAMETOOLONG}},
    {ERROR_FILE_INVALID,
     "The volume for a file has been externally altered so that the opened file is no longer valid."},
    {ERROR_IO_DEVICE, "The request could not be performed because of an I/O device error.", {EIO}},
    {ERROR_CANT_RESOLVE_FILENAME, "The name of the file cannot be resolved by the system.", {ELOOP}},
};

std::uint32_t lastError = ERROR_SUCCESS;

} // namespace

std::uint32_t GetLastError() {
    return lastError;
}

void SetLastError(std::uint32_t number) {
    lastError = number;
}

Failure failureFrom(int systemError) {
    const auto means = [systemError](const ErrorText& row) {
        return std::ranges::find(row.systemErrors, systemError) != row.systemErrors.end();
    };
    const auto* const row = std::ranges::find_if(errorTexts, means);
    return {row == std::end(errorTexts) ? ERROR_GEN_FAILURE : row->number};
}

std::string FormatMessageA(std::uint32_t number) {
    const auto* const row = std::ranges::find(errorTexts, number, &ErrorText::number);
    return row == std::end(errorTexts) ? "" : std::string(row->text) + "\r\n";
}

std::string errorText(std::uint32_t number) {
    const std::string text = FormatMessageA(number);
    return text.empty() ? "Error code " + std::to_string(number) : text.substr(0, text.find_first_of("\r\n"));
}
