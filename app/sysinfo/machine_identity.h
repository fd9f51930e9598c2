#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <QByteArray>
#include <QString>
#include <QStringList>

// What the machine's management interface tells, read at most once per process.
struct WmiSystemData {
    QString manufacturer;
    QString model;
    QStringList videoControllers;
    QByteArray smbiosData; // header of 8 bytes, then the structures
};

struct ManufacturerAndModel {
    QString manufacturer;
    QString model;
};

// The seam to the operating system for identifying the machine: one call per
// source, no decisions. Every call may fail, and then gives empty values.
class MachineIdentity {
public:
    MachineIdentity() = default;
    MachineIdentity(const MachineIdentity&) = delete;
    MachineIdentity& operator=(const MachineIdentity&) = delete;
    virtual ~MachineIdentity() = default;

    // The first source.
    [[nodiscard]] virtual WmiSystemData managementData() = 0;
    // The second source: nothing when the system has no registry, or it can't be
    // opened.
    [[nodiscard]] virtual bool hasRegistry() const = 0;
    [[nodiscard]] virtual std::optional<ManufacturerAndModel> registryValues() = 0;
    // The third source: the raw firmware table with its header of 8 bytes; empty
    // when the system has no way to it.
    [[nodiscard]] virtual QByteArray firmwareTable() = 0;

    // The manufacturer as the virtual machine test reads it.
    [[nodiscard]] virtual QString systemManufacturer() = 0;

    // The text for osName().
    [[nodiscard]] virtual QString operatingSystemName() = 0;

    struct Processor {
        QString brand;
        std::optional<std::uint8_t> coreCount; // where the processor itself tells
    };
    [[nodiscard]] virtual std::optional<Processor> processor() = 0;
    // The number of cores as the operating system counts them.
    [[nodiscard]] virtual std::uint8_t operatingSystemCoreCount() = 0;
};

// This system's way to identify the machine.
[[nodiscard]] std::unique_ptr<MachineIdentity> systemMachineIdentity();
