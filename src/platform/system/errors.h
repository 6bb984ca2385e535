// The error numbers of the platform with their English texts, and what an operation answers.
#pragma once

#include <cstdint>
#include <string>

constexpr std::uint32_t ERROR_SUCCESS = 0;
constexpr std::uint32_t ERROR_FILE_NOT_FOUND = 2;
constexpr std::uint32_t ERROR_PATH_NOT_FOUND = 3;
constexpr std::uint32_t ERROR_ACCESS_DENIED = 5;
constexpr std::uint32_t ERROR_INVALID_DATA = 13;
constexpr std::uint32_t ERROR_WRITE_PROTECT = 19;
constexpr std::uint32_t ERROR_GEN_FAILURE = 31;
constexpr std::uint32_t ERROR_SHARING_VIOLATION = 32;
constexpr std::uint32_t ERROR_NOT_SUPPORTED = 50;
constexpr std::uint32_t ERROR_DISK_FULL = 112;
constexpr std::uint32_t ERROR_ALREADY_EXISTS = 183;
constexpr std::uint32_t ERROR_FILE_INVALID = 1006; // it is another than it was
constexpr std::uint32_t ERROR_IO_DEVICE = 1117;
constexpr std::uint32_t ERROR_CANT_RESOLVE_FILENAME = 1921; // a link that leads nowhere

// The number of the last failure, 0 if nothing has failed. Operations that tell success alone leave it here.
std::uint32_t GetLastError();
void SetLastError(std::uint32_t number);

// The system's English text of an error number, ended by "\r\n" as the platform ends it; empty for a number
// it does not know. The caller owns the text: there is nothing to free.
std::string FormatMessageA(std::uint32_t number);

// The same without its line end, and never empty: what a person is told as the reason of a failure.
std::string errorText(std::uint32_t number);

// Whether the number only says that nothing stands there: no failure of the disk.
constexpr bool isAbsence(std::uint32_t number) {
    return number == ERROR_FILE_NOT_FOUND || number == ERROR_PATH_NOT_FOUND;
}

// Nothing, or the number of the reason.
struct [[nodiscard]] Failure {
    std::uint32_t number = ERROR_SUCCESS;

    explicit operator bool() const { return number != ERROR_SUCCESS; }
    bool operator==(const Failure&) const = default;
    bool isAbsence() const { return ::isAbsence(number); }
    std::string text() const { return errorText(number); } // never empty
};

// Leaves the number as the last error. Whether it was a success.
inline bool succeeded(Failure failure) {
    if (failure)
        SetLastError(failure.number);
    return !failure;
}
