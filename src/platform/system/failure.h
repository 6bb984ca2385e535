// What an operation answers: nothing, or the number of the reason.
#pragma once

#include <cstdint>
#include <string>

#include "platform/system/errors.h"

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
