// The one way in which the logic speaks to the person: a text with a title and the flags of a message box. A
// program sets how it is shown and answered; the desktop tool with a message box, the companion with a line,
// a test with a record of it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

using Notifier = std::function<int(const char* text, const char* title, std::uint32_t flags)>;

// What a text says at its end where the disk is to be looked at anew.
constexpr const char* inspectAgain = "inspect the database again (in the window: \"Rebuild database\")";

// Sets how messages are shown. Until then they go to standard error, and questions are answered with No.
void setNotifier(Notifier operation);

// Shows the text and returns the answer: IDOK, IDCANCEL, IDYES or IDNO of messagebox.h.
int notify(const char* text, const char* title, std::uint32_t flags);

// Shows several texts as one message, the first few of them and how many more; advice is said at the end.
// Nothing where there is none.
void notifyall(const std::vector<std::string>& texts, const char* advice = "");
// The same with a question. Whether the answer is Yes.
bool askall(const std::vector<std::string>& texts, const char* question);
