#include "settings/windowplaces.h"

#include "platform/registry/registry.h"

namespace {

constexpr const char* placesKey = "txinspect\\Windows"; // beside the product's own settings

} // namespace

std::string readWindowPlace(const char* window) {
    std::string place;
    HKEY key;
    if (RegOpenKeyExA(placesKey, key) == 0)
        RegQueryValueExA(key, window, place);
    return place;
}

void writeWindowPlace(const char* window, const std::string& place) {
    HKEY key;
    RegCreateKeyExA(placesKey, key);
    if (!place.empty())
        RegSetValueExA(key, window, place);
}
