#pragma once

#include <vector>

#include <QByteArray>
#include <QString>

#include "app/sensors/sensortype.h"

class SystemInfo;

// What is known about one key of the controller.
struct SensorDatabaseEntry {
    QString key;
    QString name;
    QString group;
    SensorType type = SensorType::other;

    bool operator==(const SensorDatabaseEntry&) const = default;
};

// The SMC keys that are known on this model of Mac, with their names. Loaded and
// used by one thread at a time.
class SensorDatabase {
public:
    // systemInfo must outlive the database. resourcePath is the gzip-compressed
    // XML file.
    explicit SensorDatabase(const SystemInfo& systemInfo,
                            const QString& resourcePath
                            = QStringLiteral(":/Resources/xml/smcSensors.xml.gz"));

    // Reads the file, unless that has been done: a failure, which leaves the
    // database empty and a line in the log, is tried again.
    void load();

    [[nodiscard]] const std::vector<SensorDatabaseEntry>& entries() const { return m_entries; }
    // The first entry whose key is equal by isSmcKeyEqual, or null; valid until
    // the next load().
    [[nodiscard]] const SensorDatabaseEntry* find(const QString& key) const;

    // The entries that an XML text holds for this machine: the rules that match
    // its model, later ones laid over earlier ones. None when the bytes are not
    // what they should be.
    [[nodiscard]] static std::vector<SensorDatabaseEntry> parse(const QByteArray& xml,
                                                                const SystemInfo& systemInfo);

private:
    const SystemInfo& m_systemInfo;
    const QString m_resourcePath;
    std::vector<SensorDatabaseEntry> m_entries;
};
