#pragma once

#include <memory>
#include <set>

#include <QSettings>
#include <QTemporaryDir>

#include "app/fancontrol/fanprofile.h"
#include "core/settings/qsettingscache.h"

// The sensors that modes can name while it lives.
class KnownSensors {
public:
    KnownSensors()
    {
        FanControlMode::setSensorNameFunction([this](const QString& key) {
            return m_keys.count(key) == 0 ? QString() : QStringLiteral("Name of ") + key;
        });
    }
    KnownSensors(const KnownSensors&) = delete;
    KnownSensors& operator=(const KnownSensors&) = delete;
    ~KnownSensors() { FanControlMode::setSensorNameFunction({}); }

    void add(const char* key) { m_keys.insert(QString::fromLatin1(key)); }
    void remove(const char* key) { m_keys.erase(QString::fromLatin1(key)); }

private:
    std::set<QString> m_keys;
};

// Settings in a file of their own, which several starts share.
class SettingsFile {
public:
    [[nodiscard]] std::unique_ptr<QSettingsCache> open() const
    {
        return std::make_unique<QSettingsCache>(std::make_unique<QSettings>(
            m_folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat));
    }

private:
    QTemporaryDir m_folder;
};

inline FanControlMode followMode(const char* key, int low = 40, int high = 70)
{
    return FanControlMode::sensor(QString::fromLatin1(key), low, high);
}

// Presets for two fans.
inline FanProfile constantPreset(unsigned first, unsigned second, const char* name)
{
    return FanProfile({ FanControlMode::constant(first), FanControlMode::constant(second) },
                      QString::fromUtf8(name));
}

inline QString base64(const char* text) { return QString::fromLatin1(QByteArray(text).toBase64()); }
