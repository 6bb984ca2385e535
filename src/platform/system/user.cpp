#include "platform/system/user.h"

#include <climits>

#include <pwd.h>
#include <unistd.h>

std::uint32_t currentuser() {
    return geteuid();
}

std::string username(std::uint32_t user) {
    const passwd* entry = getpwuid(user);
    return entry != nullptr ? entry->pw_name : "user " + std::to_string(user);
}

std::string hostname() {
    char name[HOST_NAME_MAX + 1] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}
