#include "platform/registry/registry.h"

#include <QSettings>
#include <QStandardPaths>
#include <algorithm>

#include "platform/system/errors.h"

class RegistryKey {
public:
    explicit RegistryKey(const QString& group)
        : store(QString::fromStdString(registryFile()), QSettings::IniFormat) {
        store.beginGroup(group);
    }

    QSettings store;
};

namespace {

HKEY openKey(const char* subkey) {
    QString group = QString::fromUtf8(subkey);
    group.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return std::make_shared<RegistryKey>(group);
}

// Text where the bytes are text, so that the file can be read and written by hand.
QVariant stored(const std::string& value) {
    const QByteArray bytes = QByteArray::fromStdString(value);
    const QString text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes ? QVariant(text) : QVariant(bytes);
}

} // namespace

std::string registryFile() {
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return (directory + QStringLiteral("/txinspect/settings.ini")).toStdString();
}

int RegOpenKeyExA(const char* subkey, HKEY& key) {
    HKEY opened = openKey(subkey);
    if (opened->store.allKeys().isEmpty())
        return static_cast<int>(ERROR_FILE_NOT_FOUND);
    key = std::move(opened);
    return 0;
}

int RegQueryValueExA(const HKEY& key, const char* name, std::string& value) {
    const QString valueName = QString::fromUtf8(name);
    if (!key->store.contains(valueName))
        return static_cast<int>(ERROR_FILE_NOT_FOUND);
    value = key->store.value(valueName).toByteArray().toStdString();
    return 0;
}

void RegCreateKeyExA(const char* subkey, HKEY& key) {
    key = openKey(subkey);
}

int RegSetValueExA(const HKEY& key, const char* name, const std::string& value) {
    key->store.setValue(QString::fromUtf8(name), stored(value));
    key->store.sync();
    return static_cast<int>(key->store.status() == QSettings::NoError ? ERROR_SUCCESS : ERROR_ACCESS_DENIED);
}

void RegCloseKey(HKEY& key) {
    key.reset();
}
