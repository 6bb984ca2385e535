#include "reporting/notify.h"

#include <cstdio>
#include <utility>

#include "platform/system/messagebox.h"

namespace {

int notifyOnStandardError(const char* text, const char* title, std::uint32_t flags) {
    std::fprintf(stderr, "%s: %s\n", title, text);
    return (flags & MB_TYPEMASK) == MB_OK ? IDOK : IDNO;
}

Notifier operation = notifyOnStandardError;

std::string together(const std::vector<std::string>& texts, const char* ending) {
    constexpr std::size_t few = 5;
    std::string whole;
    for (std::size_t i = 0; i < texts.size() && i < few; ++i)
        whole += (i == 0 ? "" : "\n") + texts[i];
    if (texts.size() > few)
        whole += "\nand " + std::to_string(texts.size() - few) + " more";
    return whole + (*ending != '\0' ? "\n" : "") + ending;
}

} // namespace

void setNotifier(Notifier newOperation) {
    operation = newOperation ? std::move(newOperation) : notifyOnStandardError;
}

int notify(const char* text, const char* title, std::uint32_t flags) {
    return operation(text, title, flags);
}

void notifyall(const std::vector<std::string>& texts, const char* advice) {
    if (!texts.empty())
        notify(together(texts, advice).c_str(), "Error", MB_OK | MB_ICONEXCLAMATION);
}

bool askall(const std::vector<std::string>& texts, const char* question) {
    return notify(together(texts, question).c_str(), "Warning", MB_YESNO | MB_ICONEXCLAMATION) == IDYES;
}
