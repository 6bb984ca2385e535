#include "platform/system/errors.h"

#include <cerrno>

#include "platform/system/posix.h"

namespace {

struct ErrorText {
    std::uint32_t number;
    const char* text;
};

const ErrorText errorTexts[] = {
    {ERROR_SUCCESS, "The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified."},
    {ERROR_TOO_MANY_OPEN_FILES, "The system cannot open the file."},
    {ERROR_ACCESS_DENIED, "Access is denied."},
    {ERROR_NOT_ENOUGH_MEMORY, "Not enough memory resources are available to process this command."},
    {ERROR_INVALID_DATA, "The data is invalid."},
    {ERROR_WRITE_PROTECT, "The media is write protected."},
    {ERROR_GEN_FAILURE, "A device attached to the system is not functioning."},
    {ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process."},
    {ERROR_NOT_SUPPORTED, "The request is not supported."},
    {ERROR_UNEXP_NET_ERR, "An unexpected network error occurred."},
    {ERROR_SEM_TIMEOUT, "The semaphore timeout period has expired."},
    {ERROR_DISK_FULL, "There is not enough space on the disk."},
    {ERROR_INVALID_NAME, "The filename, directory name, or volume label syntax is incorrect."},
    {ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists."},
    {ERROR_FILENAME_EXCED_RANGE, "The filename or extension is too long."},
    {ERROR_FILE_INVALID,
     "The volume for a file has been externally altered so that the opened file is no longer valid."},
    {ERROR_IO_DEVICE, "The request could not be performed because of an I/O device error."},
    {ERROR_CANT_RESOLVE_FILENAME, "The name of the file cannot be resolved by the system."},
};

struct SystemError {
    int systemError;
    std::uint32_t number;
};

const SystemError systemErrors[] = {
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ELOOP, ERROR_CANT_RESOLVE_FILENAME},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EROFS, ERROR_WRITE_PROTECT},
    {EAGAIN, ERROR_SHARING_VIOLATION}, // the file is under another program's lease
    {EBUSY, ERROR_SHARING_VIOLATION},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EOPNOTSUPP, ERROR_NOT_SUPPORTED},
    {ENOSYS, ERROR_NOT_SUPPORTED},
    {ENOLCK, ERROR_NOT_SUPPORTED},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EFBIG, ERROR_DISK_FULL},
    {EINVAL, ERROR_INVALID_NAME}, // file systems that forbid some characters
    {EILSEQ, ERROR_INVALID_NAME},
    {EEXIST, ERROR_ALREADY_EXISTS},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {EIO, ERROR_IO_DEVICE},
    {ESTALE, ERROR_UNEXP_NET_ERR}, // what a file server says of a file that it has lost
    {ENETDOWN, ERROR_UNEXP_NET_ERR},
    {ENETUNREACH, ERROR_UNEXP_NET_ERR},
    {EHOSTDOWN, ERROR_UNEXP_NET_ERR},
    {EHOSTUNREACH, ERROR_UNEXP_NET_ERR},
    {ECONNRESET, ERROR_UNEXP_NET_ERR},
    {ENOTCONN, ERROR_UNEXP_NET_ERR},
    {ETIMEDOUT, ERROR_SEM_TIMEOUT},
};

std::uint32_t lastError = ERROR_SUCCESS;

std::uint32_t numberOf(int systemError) {
    for (const SystemError& row : systemErrors)
        if (row.systemError == systemError)
            return row.number;
    return ERROR_GEN_FAILURE;
}

} // namespace

std::uint32_t GetLastError() {
    return lastError;
}

void SetLastError(std::uint32_t number) {
    lastError = number;
}

Failure failureFrom(int systemError) {
    return {numberOf(systemError)};
}

std::string FormatMessageA(std::uint32_t number) {
    for (const ErrorText& row : errorTexts)
        if (row.number == number)
            return std::string(row.text) + "\r\n";
    return {};
}

std::string errorText(std::uint32_t number) {
    const std::string text = FormatMessageA(number);
    return text.empty() ? "Error code " + std::to_string(number) : text.substr(0, text.find_first_of("\r\n"));
}
