#pragma once

#include <cstdint>
#include <optional>

#include "app/sensors/drives/atacommands.h"
#include "app/sensors/drives/drivecalls.h"

// ATA commands within SCSI ones, as SAT's ATA PASS-THROUGH (16) has them.
namespace AtaPassThrough {

// A command that moves nothing.
[[nodiscard]] ScsiCommand plain(const AtaRegisters& registers);
// A command that answers in its registers, and moves nothing.
[[nodiscard]] ScsiCommand asking(const AtaRegisters& registers);
// A command that reads one block of 512 bytes into data.
[[nodiscard]] ScsiCommand reading(const AtaRegisters& registers, std::span<std::uint8_t> data);

// Whether the drive has done a plain or a reading command.
[[nodiscard]] bool succeeded(const ScsiOutcome& outcome);
// The sector count that the drive has answered to an asking command. Nothing when
// it failed or the answer isn't there. Takes any bytes.
[[nodiscard]] std::optional<std::uint8_t> returnedSectorCount(const ScsiOutcome& outcome);

} // namespace AtaPassThrough
