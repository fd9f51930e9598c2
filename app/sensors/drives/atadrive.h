#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "app/sensors/drives/drivecalls.h"

// An open ATA drive under Linux. Each operation is one call to it at the most, which
// takes as long as the drive does, at most seven seconds, and allocates nothing.
// Those that can fail give 0 for success or the system's error number.
class AtaDrive {
public:
    enum class Power {
        awake,
        standby, // most commands would wake it
        unknown, // it doesn't tell
    };
    using Block = std::array<std::uint8_t, 512>;

    // Owns the descriptor. The file tells whether the kernel has put the device to
    // sleep.
    AtaDrive(std::shared_ptr<DriveCalls> calls, int descriptor, QByteArray runtimeStatusFile);
    AtaDrive(const AtaDrive&) = delete;
    AtaDrive& operator=(const AtaDrive&) = delete;
    ~AtaDrive();

    // Wakes no drive.
    [[nodiscard]] Power power();
    // Wakes no drive, unless the kernel has put its device to sleep.
    [[nodiscard]] int identify(Block& data);
    [[nodiscard]] int enableSmart();
    [[nodiscard]] int readSmartData(Block& data);

private:
    [[nodiscard]] int execute(const ScsiCommand& command);

    const std::shared_ptr<DriveCalls> m_calls; // never null
    const int m_descriptor;
    const QByteArray m_runtimeStatusFile;
};
