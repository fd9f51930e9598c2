#pragma once

#include "app/sysinfo/machine_identity.h"

// The machine as the kernel's files describe it. The firmware's table can be
// read by root only; the first source doesn't need it.
class MachineIdentityLinux final : public MachineIdentity {
public:
    // pciIdPaths: where the file of PCI identifiers may lie; the first that can be
    // read counts.
    explicit MachineIdentityLinux(const QStringList& pciIdPaths);

    [[nodiscard]] WmiSystemData managementData() override;
    [[nodiscard]] bool hasRegistry() const override;
    [[nodiscard]] std::optional<ManufacturerAndModel> registryValues() override;
    [[nodiscard]] QByteArray firmwareTable() override;
    [[nodiscard]] QString systemManufacturer() override;
    [[nodiscard]] QString operatingSystemName() override;
    [[nodiscard]] std::optional<Processor> processor() override;
    [[nodiscard]] std::uint8_t operatingSystemCoreCount() override;

private:
    const QStringList m_pciIdPaths;
};
