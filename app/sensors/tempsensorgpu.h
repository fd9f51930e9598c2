#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "app/sensors/tempsensorabstract.h"
#include "core/latin1.h"

namespace GPU {
struct Info;
class Provider;
}

// The temperature of one GPU: as its driver tells it, and once the driver has
// failed, as the controller does where it has a key for this GPU. That key is this
// sensor's as well, so that what was made for the one holds for the other.
class TemperatureSensorGPU final : public TemperatureSensorAbstract {
public:
    // What all their display names begin with.
    static constexpr QLatin1String namePrefix = core::latin1("GPU ");

    // Where the readings come from. The pointers may be null; what they point to
    // is not owned.
    struct Source {
        const GPU::Info* gpu = nullptr;
        TemperatureSensorAbstract* smcSensor = nullptr;
        bool integrated = false;
    };

    // The flag is that of all sensors of one process: the first failure of a driver
    // is logged. It must outlive the sensor.
    TemperatureSensorGPU(const QString& key, const QString& displayName, const Source& source,
                         std::once_flag& failureLogged);

    // One sensor for each GPU that the provider finds and that can be read. The
    // controller's sensors, of the discrete and of the integrated GPU, may be null;
    // those that a GPU's sensor takes the place of become hidden.
    [[nodiscard]] static std::vector<std::unique_ptr<TemperatureSensorGPU>>
    loadAvailableSensors(GPU::Provider* provider, TemperatureSensorAbstract* discreteSmc,
                         TemperatureSensorAbstract* integratedSmc, std::once_flag& failureLogged);

    void UpdateValue() override;
    // The case of the fourth letter is free where both are keys of the controller.
    [[nodiscard]] bool isKeyEqual(const QString& key) const override;

    // In the processor. Such a GPU is read from the controller alone.
    [[nodiscard]] bool isIntegrated() const { return m_source.integrated; }
    // What the sensor reads from is about to go: it reads nothing any more. No task
    // may use it meanwhile.
    void detach();

private:
    void readDriver();
    void readSmc();

    Source m_source;
    std::once_flag& m_failureLogged;
    bool m_useSmc = false; // the driver isn't asked any more
};
