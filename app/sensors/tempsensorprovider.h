#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QString>

#include "app/sensors/sensordatabase.h"

class SystemInfo;
class TemperatureSensorAbstract;

namespace SMC {
class Service;
}

// Owns all sensors. load() and unload() run while no task uses the sensors; the
// pointers that queries give are valid until the next unload().
class TemperatureSensorProvider : public QObject {
    Q_OBJECT

public:
    // systemInfo must outlive the provider.
    explicit TemperatureSensorProvider(const SystemInfo& systemInfo, QObject* parent = nullptr);
    ~TemperatureSensorProvider() override;

    // service must outlive what is loaded.
    void load(SMC::Service* service);
    void unload();

    // All visible sensors in display order: drives last.
    [[nodiscard]] std::vector<TemperatureSensorAbstract*> getSensors() const;
    // The first visible sensor with this key, or null.
    [[nodiscard]] TemperatureSensorAbstract* getSensorByKey(const QString& key) const;
    // Empty, with a log line, when there is no such sensor.
    [[nodiscard]] QString getSensorDisplayNameByKey(const QString& key) const;
    // The sensors' share of the technical report.
    [[nodiscard]] QString getTechInfo(SMC::Service* service) const;

Q_SIGNALS:
    void reloadRequired();

private:
    using SensorList = std::vector<std::unique_ptr<TemperatureSensorAbstract>>;

    void addCpuCoreAverage();
    [[nodiscard]] QString smcTechInfo(SMC::Service& service) const;

    SensorDatabase m_database;
    SensorList m_smcSensors;
};
