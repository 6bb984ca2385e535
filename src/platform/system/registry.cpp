#include "platform/system/registry.h"

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

std::string registryFile() {
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return (directory + QStringLiteral("/txinspect/settings.ini")).toStdString();
}

int RegOpenKeyExA(const char* subkey, HKEY& key) {
    QString group = QString::fromUtf8(subkey);
    group.replace(QLatin1Char('\\'), QLatin1Char('/'));
    auto opened = std::make_shared<RegistryKey>(group);
    if (opened->store.allKeys().isEmpty())
        return static_cast<int>(ERROR_FILE_NOT_FOUND);
    key = std::move(opened);
    return 0;
}

int RegQueryValueExA(const HKEY& key, const char* name, std::string& value) {
    const QString valueName = QString::fromUtf8(name);
    if (!key->store.contains(valueName))
        return static_cast<int>(ERROR_FILE_NOT_FOUND);
    value = key->store.value(valueName).toString().toStdString();
    return 0;
}

void RegCloseKey(HKEY& key) {
    key.reset();
}
