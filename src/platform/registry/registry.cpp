#include "platform/registry/registry.h"

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <vector>

#include "platform/system/bytestream.h"
#include "platform/system/errors.h"
#include "platform/system/person.h"
#include "platform/system/tree.h"
#include "platform/system/utf8.h"

using Json = nlohmann::json;

class RegistryKey {
public:
    std::string path; // with / between its parts and in front
    Json values;      // as they stood when the key was opened; none where it is open for writing
};

namespace {

std::string pathOf(std::string subkey) {
    std::ranges::replace(subkey, '\\', '/');
    return '/' + subkey;
}

// False where the disk does not give the store. One that is missing or damaged holds nothing.
bool readStore(Json& store) {
    constexpr std::int64_t largest = 1 << 20; // bytes; no settings are larger
    store = Json::object();
    ByteStream file;
    if (!file.open(registryFile().c_str(), OpenMode::read))
        return isAbsence(GetLastError());
    std::string text(static_cast<std::size_t>(std::min(file.state().size, largest)), '\0');
    text.resize(file.read(text.data(), text.size()));
    if (Json found = Json::parse(text, nullptr, false); found.is_object())
        store = std::move(found);
    return file.readFailure() == 0;
}

bool writeStore(const std::string& text) {
    const std::string path = registryFile();
    Tree place;
    std::string name;
    return !makePrivateDirectories(path.substr(0, path.rfind('/'))) && !place.openDirectoryOf(path, name) &&
           !place.replace(name, text);
}

// JSON has no place for bytes that are no text: they stand as numbers.
Json stored(const std::string& value) {
    return isUtf8(value) ? Json(value) : Json(std::vector<unsigned char>(value.begin(), value.end()));
}

bool restored(const Json& found, std::string& value) {
    const auto isByte = [](const Json& byte) {
        return byte.is_number_unsigned() && byte.get<std::uint64_t>() <= 0xFF;
    };
    if (found.is_string())
        value = found.get<std::string>();
    if (!found.is_array() || !std::ranges::all_of(found, isByte))
        return found.is_string();
    value.clear();
    for (const Json& byte : found)
        value += static_cast<char>(byte.get<unsigned char>());
    return true;
}

} // namespace

std::string registryFile() {
    const char* directory = std::getenv("XDG_CONFIG_HOME");
    if (directory != nullptr && *directory == '/')
        return std::string(directory) + "/txinspect/settings.json";
    const char* home = std::getenv("HOME");
    return std::string(home != nullptr ? home : "") + "/.config/txinspect/settings.json";
}

int RegOpenKeyExA(const char* subkey, HKEY& key) {
    Json store;
    const Json::json_pointer pointer(pathOf(subkey));
    if (!readStore(store) || !store.contains(pointer) || !store[pointer].is_object())
        return static_cast<int>(ERROR_FILE_NOT_FOUND);
    key = std::make_shared<RegistryKey>(RegistryKey{pathOf(subkey), store[pointer]});
    return 0;
}

int RegQueryValueExA(const HKEY& key, const char* name, std::string& value) {
    const auto found = key->values.find(name);
    const bool good = found != key->values.end() && restored(*found, value);
    return static_cast<int>(good ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND);
}

void RegCreateKeyExA(const char* subkey, HKEY& key) {
    key = std::make_shared<RegistryKey>(RegistryKey{pathOf(subkey), {}});
}

int RegSetValueExA(const HKEY& key, const char* name, const std::string& value) {
    Json store;
    Json change;
    const bool known = readStore(store);
    change[Json::json_pointer(key->path + '/' + name)] = stored(value);
    store.merge_patch(change);
    return static_cast<int>(known && writeStore(store.dump(4) + "\n") ? ERROR_SUCCESS : ERROR_ACCESS_DENIED);
}

void RegCloseKey(HKEY& key) {
    key.reset();
}
