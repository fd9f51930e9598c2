#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <QObject>
#include <QString>

#include "app/sensors/sensordatabase.h"
#include "app/sensors/tempsensordisk.h"
#include "app/sensors/tempsensorgpu.h"

class QSettingsCache;
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
    // Gives the sensors of the drives, as TempSensorDisk::loadAvailableSensors does.
    using DriveLoader
        = std::function<TempSensorDisk::List(bool showSmartDrives, bool showNvmeDrives)>;

    // systemInfo and settings must outlive the provider.
    TemperatureSensorProvider(const SystemInfo& systemInfo, QSettingsCache& settings,
                              DriveLoader loadDrives, QObject* parent = nullptr);
    ~TemperatureSensorProvider() override;

    // service must outlive what is loaded, and so must the provider of GPUs, which
    // may be null.
    void load(SMC::Service* service, GPU::Provider* gpuProvider = nullptr);
    // The provider is the one that was given to load().
    void unload(GPU::Provider* gpuProvider = nullptr);

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

    [[nodiscard]] TemperatureSensorAbstract* findSmcSensor(const char* key) const;
    void loadGpuSensors(GPU::Provider* gpuProvider);
    void loadDrives();
    void addCpuCoreAverage();
    [[nodiscard]] QString smcTechInfo(SMC::Service& service) const;

    QSettingsCache& m_settings;
    const DriveLoader m_loadDrives;
    SensorDatabase m_database;
    SensorList m_smcSensors;
    SensorList m_diskSensors;
    std::vector<std::unique_ptr<TemperatureSensorGPU>> m_gpuSensors;
    // The sensors of GPUs stay allocated after a reload: required.
    std::vector<std::unique_ptr<TemperatureSensorGPU>> m_formerGpuSensors;
    std::once_flag m_gpuFailureLogged;
};
