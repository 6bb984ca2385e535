#include "settings/settings.h"

#include <string>

#include "platform/registry/registry.h"
#include "settings/edition.h"

const char* const notStartedText = "The software is not properly started. Please run the startup program";
const char* const noValidDatabaseText = "No valid database specified";

namespace {

constexpr const char* homeValue = "Home Directory";
constexpr const char* currentValue = "Current Database";

std::string storePath() {
    return std::string("SOFTWARE\\") + makerName(makerId(), productId()) + "\\" +
           productName(makerId(), productId()) + "\\1.0";
}

} // namespace

bool readSettingsStore(DatabaseSettings& settings) {
    HKEY key;
    if (RegOpenKeyExA(storePath().c_str(), key) != 0)
        return false;
    std::string home;
    std::string current;
    const int homeResult = RegQueryValueExA(key, homeValue, home);
    const int currentResult = RegQueryValueExA(key, currentValue, current);
    RegCloseKey(key);
    settings.homeDirectory = home.c_str();
    settings.currentDatabase = current.c_str();
    return homeResult == 0 && currentResult == 0;
}

bool writeSettingsStore(const DatabaseSettings& settings) {
    HKEY key;
    RegCreateKeyExA(storePath().c_str(), key);
    bool result = true;
    const auto write = [&](const char* name, const char* value) {
        if (*value != '\0' && RegSetValueExA(key, name, value) != 0)
            result = false;
    };
    write(homeValue, settings.homeDirectory);
    write(currentValue, settings.currentDatabase);
    RegCloseKey(key);
    return result;
}
