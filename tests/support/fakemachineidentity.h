#pragma once

#include "app/sysinfo/machine_identity.h"

// A machine that tells what the test has put into it; by default an Apple
// machine of the given model.
class FakeMachineIdentity final : public MachineIdentity {
public:
    explicit FakeMachineIdentity(const QString& model = QStringLiteral("MacBookPro11,3"));

    WmiSystemData managementData() override { return management; }
    bool hasRegistry() const override { return registryExists; }
    std::optional<ManufacturerAndModel> registryValues() override { return registry; }
    QByteArray firmwareTable() override { return firmware; }
    QString systemManufacturer() override { return management.manufacturer; }
    QString operatingSystemName() override { return osName; }
    std::optional<Processor> processor() override { return cpu; }
    std::uint8_t operatingSystemCoreCount() override { return coreCount; }

    WmiSystemData management;
    bool registryExists = false;
    std::optional<ManufacturerAndModel> registry;
    QByteArray firmware;
    QString osName = QStringLiteral("Test system x64");
    std::optional<Processor> cpu;
    std::uint8_t coreCount = 4;
};
