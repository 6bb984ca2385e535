// The one way in which the logic speaks to the person: a text with a title and the flags of a message box. A
// program sets how it is shown and answered; the desktop tool with a message box, the companion with a line,
// a test with a record of it.
#pragma once

#include <cstdint>
#include <functional>

using ReportOperation = std::function<int(const char* text, const char* title, std::uint32_t flags)>;

// Sets how reports are shown. Until then they go to standard error, and questions are answered with No.
void setReport(ReportOperation operation);

// Shows the text and returns the answer: IDOK, IDCANCEL, IDYES or IDNO of messagebox.h.
int report(const char* text, const char* title, std::uint32_t flags);
