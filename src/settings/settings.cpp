#include "settings/settings.h"

#include "platform/registry/registry.h"

const char* const notStartedText = "The software is not properly started. Please run the startup program";
const char* const noValidDatabaseText = "No valid database specified";

namespace {

constexpr const char* homeValue = "Home Directory";
constexpr const char* currentValue = "Current Database";
constexpr std::size_t maxvalue = 998; // bytes; a longer one is not taken: cut, it could name another place

constexpr const char* placementsKey = "txinspect\\Windows"; // beside the product's own settings

constexpr Edition editions[] = {
    {0, 1, "Hesperon Labs", "Trelvanexis", "txstart"},
    {0, 2, "Hesperon Labs", "Marliskon XT", "mkstart"},
    {1, 1, "KELDARO", "Ondravel Spectrum Corenetics", "ovistart"},
    {1, 2, "KELDARO", "Ondravel Spectrum", "ovstart"},
};

std::string storePath() {
    return std::string("SOFTWARE\\") + edition().makerName + "\\" + edition().productName + "\\1.0";
}

bool readValue(const HKEY& key, const char* name, Text<2000>& value) {
    std::string text;
    if (RegQueryValueExA(key, name, text) != 0 || text.size() > maxvalue)
        return false;
    value = text.c_str();
    return true;
}

} // namespace

const Edition& edition() {
    return editions[0];
}

bool readSettingsStore(DatabaseSettings& settings) {
    HKEY key;
    if (RegOpenKeyExA(storePath().c_str(), key) != 0)
        return false;
    const bool home = readValue(key, homeValue, settings.homeDirectory);
    const bool current = readValue(key, currentValue, settings.currentDatabase);
    RegCloseKey(key);
    return home && current;
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

std::string readWindowPlacement(const char* window) {
    std::string placement;
    HKEY key;
    if (RegOpenKeyExA(placementsKey, key) == 0)
        RegQueryValueExA(key, window, placement);
    return placement;
}

void writeWindowPlacement(const char* window, const std::string& placement) {
    HKEY key;
    RegCreateKeyExA(placementsKey, key);
    if (!placement.empty())
        RegSetValueExA(key, window, placement);
}
