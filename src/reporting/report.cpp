#include "reporting/report.h"

#include <cstdio>
#include <utility>

#include "platform/system/messagebox.h"

namespace {

int reportToStandardError(const char* text, const char* title, std::uint32_t flags) {
    std::fprintf(stderr, "%s: %s\n", title, text);
    return (flags & MB_TYPEMASK) == MB_OK ? IDOK : IDNO;
}

ReportOperation operation = reportToStandardError;

} // namespace

void setReport(ReportOperation newOperation) {
    operation = newOperation ? std::move(newOperation) : reportToStandardError;
}

int report(const char* text, const char* title, std::uint32_t flags) {
    return operation(text, title, flags);
}
